# How the packages' programs are compiled. The same sources give the same bytes: no path of the build enters a
# program (and cpack takes its times from SOURCE_DATE_EPOCH).
add_compile_options("-ffile-prefix-map=${CMAKE_BINARY_DIR}=build" "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=."
  -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
add_link_options(-Wl,-z,relro -Wl,-z,now -pie)
