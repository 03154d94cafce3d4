# What every target of ours is compiled with. The flags travel by this target, never
# directory-wide, so that embedding the project changes nothing for its parent.
add_library(gatotu_options INTERFACE)
target_compile_features(gatotu_options INTERFACE cxx_std_20)
target_compile_options(gatotu_options INTERFACE -fvisibility=hidden -fvisibility-inlines-hidden)
target_include_directories(gatotu_options INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)

if(PROJECT_IS_TOP_LEVEL)
  target_compile_options(gatotu_options INTERFACE -Wall -Wextra -Werror)
endif()

# Unique symbols of template statics would pin a plug-in in memory for ever.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(gatotu_options INTERFACE -fno-gnu-unique)
  # g++ 12 sees an overlap in every `"text" + std::string()`.
  target_compile_options(gatotu_options INTERFACE -Wno-restrict)
endif()

if(GATOTU_SANITIZE)
  target_compile_options(gatotu_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
  target_link_options(gatotu_options INTERFACE -fsanitize=address,undefined)
elseif(GATOTU_SANITIZE_THREAD)
  target_compile_options(gatotu_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer -O1)
  target_link_options(gatotu_options INTERFACE -fsanitize=thread)
else()
  target_compile_options(gatotu_options INTERFACE -fstack-protector-strong
    $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
  target_link_options(gatotu_options INTERFACE
    -Wl,-z,relro -Wl,-z,noexecstack -Wl,--as-needed $<$<CONFIG:Release>:-Wl,-O1>)
endif()

# Every room's library lands in one folder, so that the program and the plug-in find one another.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# gatotu_finds_libraries(target folder...): where the target looks for libraries of ours, built as
# well as installed. To folders of the build alone CMake adds an empty name, which has the loader
# look in the working directory: some eighty vain calls at each start, and nobody's wish.
function(gatotu_finds_libraries target)
  set(folders ${ARGN})
  list(REMOVE_DUPLICATES folders)
  set_target_properties(${target} PROPERTIES
    BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH_USE_LINK_PATH ON INSTALL_RPATH "${folders}")
endfunction()

# gatotu_room(target): a room's library: position independent, ours to compile, known as
# gatotu::<target> to those who link it.
function(gatotu_room target)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_EXTENSIONS OFF)
  gatotu_finds_libraries(${target} "$ORIGIN")
  target_link_libraries(${target} PRIVATE gatotu_options)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  add_library(gatotu::${target} ALIAS ${target})
endfunction()
