# Helpers of the scripts that build consumers of the library.

# Runs a command and fails the test when it fails; its output is left in
# LAST_OUTPUT.
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGV}\n${out}\n${err}")
  endif()
  set(LAST_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

# Runs the consumer program, which must work and report the plug-in directory
# beside the library in `libdir`.
function(run_consumer program libdir)
  run(${program})
  file(REAL_PATH ${libdir} libdir)
  string(FIND "${LAST_OUTPUT}" "consumer: sxGroup 1\nplug-in directory: ${libdir}/sxcore\n" found)
  if(found GREATER -1 AND CHECK_MODULES)
    string(FIND "${LAST_OUTPUT}" "loader: SXTEXTLOADER.DLL\n" found)
    if(found GREATER -1)
      string(FIND "${LAST_OUTPUT}" "text round trip: round trip\n" found)
    endif()
  endif()
  if(found EQUAL -1)
    message(FATAL_ERROR "unexpected output of ${program} (library in ${libdir}):\n${LAST_OUTPUT}")
  endif()
endfunction()
