# How code is compiled, and which folder may see which.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
add_library(quorva_options INTERFACE)
target_compile_options(quorva_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror
    # GCC 12 sees overlapping copies in std::string operations where none can be.
    -Wno-restrict
    # Results are the same on every machine: no contraction into fused operations, no fast-math.
    -ffp-contract=off
    # Which functions leave the module is decided by its export list alone (src/module/exports.txt).
    $<$<PLATFORM_ID:Linux>:-fno-semantic-interposition>)
target_compile_definitions(quorva_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

# quorva_folder(NAME SEES target...): the sources of src/NAME as the target quorva_NAME. A folder's headers are
# included as "NAME/header.h" and found only by targets that link it, so the arrows between folders are enforced here.
function(quorva_folder name)
    cmake_parse_arguments(PARSE_ARGV 1 FOLDER "" "" "SEES;SOURCES")
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp)
    list(APPEND sources ${FOLDER_SOURCES})
    set(root ${CMAKE_BINARY_DIR}/folders/${name})
    file(MAKE_DIRECTORY ${root})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${name} ${root}/${name} SYMBOLIC)
    if(sources)
        add_library(quorva_${name} OBJECT ${sources})
        target_link_libraries(quorva_${name} PRIVATE quorva_options PUBLIC ${FOLDER_SEES})
        target_include_directories(quorva_${name} PUBLIC ${root})
    else()
        add_library(quorva_${name} INTERFACE)
        target_link_libraries(quorva_${name} INTERFACE ${FOLDER_SEES})
        target_include_directories(quorva_${name} INTERFACE ${root})
    endif()
endfunction()

# Objects of the given folders, for a target that is made of them (objects do not travel through other objects).
function(quorva_objects target)
    foreach(name ${ARGN})
        get_target_property(type quorva_${name} TYPE)
        if(type STREQUAL "OBJECT_LIBRARY")
            target_sources(${target} PRIVATE $<TARGET_OBJECTS:quorva_${name}>)
        endif()
        target_link_libraries(${target} PRIVATE quorva_${name})
    endforeach()
endfunction()
