# Compiler settings shared by every target of the project.
add_library(sxCoreWarnings INTERFACE)
target_compile_options(sxCoreWarnings INTERFACE -Wall -Wextra)

if(SXCORE_SANITIZE)
  add_compile_options(-fsanitize=${SXCORE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${SXCORE_SANITIZE})
endif()
