# sxcore_add_module(<target> <output dir> <sources>...): a plug-in module,
# a shared library that the library loads at run time, built into the
# given folder.
function(sxcore_add_module target dir)
  add_library(${target} MODULE ${ARGN})
  target_link_libraries(${target} PRIVATE sxCore::sxCore sxCoreWarnings)
  # Unique symbols would make a module impossible to unload.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  set_target_properties(${target} PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY ${dir}
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()
