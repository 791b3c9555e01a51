# Flags shared by every target of the product, its tests and benchmarks.

# IEEE double as written: never fuse a * b + c behind the code's back.
add_compile_options(-Wall -Wextra -ffp-contract=off -fno-fast-math)

# Template statics and inline variables would otherwise become STB_GNU_UNIQUE
# symbols, which pin a dlopen'ed module in memory for the life of the process.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-gnu-unique)
endif()

set(ZLR_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined")
if(ZLR_SANITIZE)
  add_compile_options(-fsanitize=${ZLR_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${ZLR_SANITIZE})
endif()
