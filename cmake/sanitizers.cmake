# -DARRLIB_SANITIZE=address,undefined and the like, for the library and all that links it.
if(ARRLIB_SANITIZE)
  add_compile_options(-fsanitize=${ARRLIB_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ARRLIB_SANITIZE})
  if(ARRLIB_SANITIZE MATCHES "address")
    # Free chunks of the pool are poisoned, so a use after release is seen at once.
    add_compile_definitions(ARRLIB_POOL_CHECKED)
  endif()
endif()
