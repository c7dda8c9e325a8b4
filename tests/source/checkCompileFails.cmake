# A class that names the wrong parent does not compile, with a message that
# says so; the same source with the right parent compiles.
foreach(variant right wrong)
  set(defs)
  if(variant STREQUAL "wrong")
    set(defs -DSX_WRONG_PARENT)
  endif()
  execute_process(
    COMMAND ${CXX} -std=c++20 -fsyntax-only -I${INCLUDE_DIR} ${defs} ${SOURCE}
    RESULT_VARIABLE result ERROR_VARIABLE errors OUTPUT_VARIABLE errors)
  if(variant STREQUAL "right" AND NOT result EQUAL 0)
    message(FATAL_ERROR "the right parent does not compile:\n${errors}")
  endif()
  if(variant STREQUAL "wrong")
    if(result EQUAL 0)
      message(FATAL_ERROR "a class naming the wrong parent compiled")
    endif()
    if(NOT errors MATCHES "is not the C\\+\\+ base of sxTestSpinner")
      message(FATAL_ERROR "the wrong parent failed for another reason:\n${errors}")
    endif()
  endif()
endforeach()
