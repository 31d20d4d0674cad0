# Warnings and code generation for everything that this project compiles; none of it reaches those who use the library.
add_compile_options(
  -Wall -Wextra -Werror -Wconversion -Wsign-conversion -Wshadow -Wcast-qual -Wnon-virtual-dtor
  # Sun times and dim steps must come out the same on every machine.
  -ffp-contract=off)

if(SHAREDCLASSES_SANITIZE)
  add_compile_options(-fsanitize=${SHAREDCLASSES_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${SHAREDCLASSES_SANITIZE})
endif()
if(SHAREDCLASSES_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# g++ 12 sees an overlap that is not there in what std::string's operator+ is inlined to.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-restrict)
endif()
