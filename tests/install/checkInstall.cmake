# Run by ctest: install, build and run the consumer two ways, then move the
# installed tree and run it again.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)
file(REMOVE_RECURSE ${WORK_DIR})
set(PREFIX ${WORK_DIR}/prefix)

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
run_consumer(${WORK_DIR}/cmake-build/consumer ${PREFIX}/${LIBDIR})

# 2. pkg-config. This consumer goes into the tree and finds the library
# relative to itself, so that it moves with the tree.
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
run(pkg-config --cflags --libs sxcore)
string(STRIP "${LAST_OUTPUT}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
file(MAKE_DIRECTORY ${PREFIX}/bin)
run(${CXX} -std=c++20 ${CONSUMER_DIR}/consumer.cpp ${flags} "-Wl,-rpath,$ORIGIN/../${LIBDIR}"
    -o ${PREFIX}/bin/pc-consumer)
run_consumer(${PREFIX}/bin/pc-consumer ${PREFIX}/${LIBDIR})

# 3. The moved tree: the plug-in directory follows the library.
file(RENAME ${PREFIX} ${WORK_DIR}/moved)
run_consumer(${WORK_DIR}/moved/bin/pc-consumer ${WORK_DIR}/moved/${LIBDIR})
