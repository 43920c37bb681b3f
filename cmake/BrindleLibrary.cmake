# brindle_precompile(TARGET [FROM OTHER] HEADERS ...): TARGET reads the precompiled HEADERS, or those of OTHER.
function(brindle_precompile target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "FROM" "HEADERS")
    if(NOT BRINDLE_PRECOMPILE)
        return()
    endif()
    if(arg_FROM)
        target_precompile_headers(${target} REUSE_FROM ${arg_FROM})
    else()
        target_precompile_headers(${target} PRIVATE ${arg_HEADERS})
    endif()
endfunction()

set(brindle_common_headers
    <QCoro/QCoroTask> <QObject> <fmt/format.h> <algorithm> <chrono> <filesystem> <functional> <map> <memory> <optional>
    <string> <unordered_map> <variant> <vector>)

# brindle_library(NAME SOURCES ... LINKS ... [PRECOMPILED ...])
# One folder of src/ as the library brindle_NAME: headers are included as "folder/Header.h", and the LINKS line is what
# the folder may see. Without precompiled headers of its own it reads those of brindle_base.
function(brindle_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS;PRECOMPILED")
    add_library(brindle_${name} STATIC ${arg_SOURCES})
    target_include_directories(brindle_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(brindle_${name} PUBLIC ${arg_LINKS} PRIVATE brindle_options)
    if(arg_PRECOMPILED)
        brindle_precompile(brindle_${name} HEADERS ${arg_PRECOMPILED})
    else()
        brindle_precompile(brindle_${name} FROM brindle_base)
    endif()
endfunction()
