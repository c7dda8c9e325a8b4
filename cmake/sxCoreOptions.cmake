# Compiler settings shared by every target of the project.
add_library(sxCoreWarnings INTERFACE)
target_compile_options(sxCoreWarnings INTERFACE -Wall -Wextra)
target_compile_features(sxCoreWarnings INTERFACE cxx_std_20)

# Sanitizers must cover the whole program, so only the top-level project may
# turn them on; a parent sanitizes sxCore with its own flags.
if(SXCORE_SANITIZE AND NOT PROJECT_IS_TOP_LEVEL)
  message(WARNING "SXCORE_SANITIZE is ignored: sxCore is not the top-level project")
elseif(SXCORE_SANITIZE)
  add_compile_options(-fsanitize=${SXCORE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${SXCORE_SANITIZE})
endif()
