# Every object of the fuzz build carries AddressSanitizer, UndefinedBehaviorSanitizer
# and libFuzzer's coverage hooks; undefined behaviour stops the run like a crash does.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "the fuzz build needs clang: configure with -DCMAKE_CXX_COMPILER=clang++")
endif()
add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                    -fno-omit-frame-pointer)
add_link_options(-fsanitize=address,undefined)
