# Run by ctest: builds and runs the consumer in a parent project that has
# sxCore as a sub-project (add_subdirectory), and configures the parent with
# FetchContent. Neither may need GoogleTest or Google Benchmark, and sxCore
# must not impose SXCORE_SANITIZE on the parent (parent/CMakeLists.txt checks).
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)
file(REMOVE_RECURSE ${WORK_DIR})
set(options -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX} -DSXCORE_SOURCE_DIR=${SOURCE_DIR}
    -DSXCORE_SANITIZE=address,undefined
    -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON -DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON)

run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/parent -B ${WORK_DIR}/subdirectory ${options})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/subdirectory --parallel 2)
run_consumer(${WORK_DIR}/subdirectory/consumer ${WORK_DIR}/subdirectory/sxCore/src)

run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/parent -B ${WORK_DIR}/fetch ${options} -DFETCH=ON)
