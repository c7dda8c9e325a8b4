# Run by ctest: install, then build and run the consumer two ways.
file(REMOVE_RECURSE ${WORK_DIR})
set(PREFIX ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGV}\n${out}\n${err}")
  endif()
  set(LAST_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})
foreach(f include/sx/sxCore.h include/sx/object/sxBase.h ${LIBDIR}/cmake/sxCore/sxCoreConfig.cmake
          ${LIBDIR}/pkgconfig/sxcore.pc)
  if(NOT EXISTS ${PREFIX}/${f})
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()
if(EXISTS ${PREFIX}/include/platform OR EXISTS ${PREFIX}/include/sx/platform)
  message(FATAL_ERROR "private platform headers were installed")
endif()

# 1. find_package(sxCore) + target_link_libraries(app sxCore::sxCore)
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/cmake-build -DCMAKE_PREFIX_PATH=${PREFIX}
    -DCMAKE_CXX_COMPILER=${CXX})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run(${WORK_DIR}/cmake-build/consumer)
if(NOT LAST_OUTPUT MATCHES "consumer: sxGroup 1")
  message(FATAL_ERROR "unexpected consumer output: ${LAST_OUTPUT}")
endif()

# 2. pkg-config
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
run(pkg-config --cflags --libs sxcore)
string(STRIP "${LAST_OUTPUT}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${CXX} -std=c++20 ${CONSUMER_DIR}/consumer.cpp ${flags} -Wl,-rpath,${PREFIX}/${LIBDIR}
    -o ${WORK_DIR}/pc-consumer)
run(${WORK_DIR}/pc-consumer)
if(NOT LAST_OUTPUT MATCHES "consumer: sxGroup 1")
  message(FATAL_ERROR "unexpected pkg-config consumer output: ${LAST_OUTPUT}")
endif()
