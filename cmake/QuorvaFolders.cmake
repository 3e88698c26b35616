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

# quorva_folder(NAME SEES target...): the sources of src/NAME as the target quorva_NAME, with "_" for "/" in a room such
# as workbook/values. A folder's headers are included as "NAME/header.h" and found only by targets that link it, so the
# arrows between folders are enforced here. Sources of folders below it that are no rooms of their own: SOURCES.
function(quorva_folder name)
    cmake_parse_arguments(PARSE_ARGV 1 FOLDER "" "" "SEES;SOURCES")
    string(REPLACE "/" "_" flat ${name})
    set(target quorva_${flat})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp)
    list(APPEND sources ${FOLDER_SOURCES})
    # The only way into the folder: a directory of its own with nothing in it but a link to the folder, under its name.
    set(root ${CMAKE_BINARY_DIR}/folders/${flat})
    cmake_path(GET name PARENT_PATH parent)
    file(MAKE_DIRECTORY ${root}/${parent})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${name} ${root}/${name} SYMBOLIC)
    if(sources)
        add_library(${target} OBJECT ${sources})
        target_link_libraries(${target} PRIVATE quorva_options PUBLIC ${FOLDER_SEES})
        target_include_directories(${target} PUBLIC ${root})
    else()
        add_library(${target} INTERFACE)
        target_link_libraries(${target} INTERFACE ${FOLDER_SEES})
        target_include_directories(${target} INTERFACE ${root})
    endif()
    set_target_properties(${target} PROPERTIES QUORVA_FOLDER ${name} QUORVA_SEES "${FOLDER_SEES}")
    set_property(GLOBAL APPEND PROPERTY QUORVA_FOLDERS ${target})
endfunction()

# The folders among the given targets, and all that those see.
function(quorva_seen_folders result)
    set(found "")
    set(left ${ARGN})
    while(left)
        list(POP_FRONT left target)
        if(TARGET ${target} AND NOT target IN_LIST found)
            get_target_property(folder ${target} QUORVA_FOLDER)
            if(folder)
                list(APPEND found ${target})
                get_target_property(sees ${target} QUORVA_SEES)
                list(APPEND left ${sees})
            endif()
        endif()
    endwhile()
    set(${result} ${found} PARENT_SCOPE)
endfunction()

# Objects of the given folders and of all that they see, for a target that is made of them (objects do not travel through
# other objects).
function(quorva_objects target)
    list(TRANSFORM ARGN REPLACE "/" "_" OUTPUT_VARIABLE folders)
    list(TRANSFORM folders PREPEND quorva_)
    quorva_seen_folders(folders ${folders})
    foreach(folder IN LISTS folders)
        get_target_property(type ${folder} TYPE)
        if(type STREQUAL "OBJECT_LIBRARY")
            target_sources(${target} PRIVATE $<TARGET_OBJECTS:${folder}>)
        endif()
        target_link_libraries(${target} PRIVATE ${folder})
    endforeach()
endfunction()
