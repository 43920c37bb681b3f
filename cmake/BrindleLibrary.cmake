# brindle_library(NAME SOURCES ... LINKS ...)
# One folder of src/ as the library brindle_NAME: headers are included as "folder/Header.h", and the LINKS line is what
# the folder may see.
function(brindle_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS")
    add_library(brindle_${name} STATIC ${arg_SOURCES})
    target_include_directories(brindle_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(brindle_${name} PUBLIC ${arg_LINKS} PRIVATE brindle_options)
endfunction()
