# Objective-C++ and bundles on GNUstep.
#
#   quorel_gnustep                interface library: how Objective-C++ is compiled and what AppKit code links to
#   quorel_bundle(name ...)       a loadable bundle in the layout that NSBundle looks for
#   QUOREL_BUNDLES                where the settings application looks for panes, below the prefix
#
# Clang compiles the Objective-C++, against the runtime of gcc: g++ has neither fast enumeration nor @autoreleasepool.

find_program(GNUSTEP_CONFIG gnustep-config REQUIRED)
execute_process(COMMAND ${GNUSTEP_CONFIG} --objc-flags OUTPUT_VARIABLE objc_flags OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${GNUSTEP_CONFIG} --gui-libs OUTPUT_VARIABLE gui_libs OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE gcc_include OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${GNUSTEP_CONFIG} --variable=GNUSTEP_SYSTEM_LIBRARY OUTPUT_VARIABLE system_library
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(objc_flags UNIX_COMMAND "${objc_flags}")
separate_arguments(gui_libs UNIX_COMMAND "${gui_libs}")

# The system's own lie deeper on some systems, by the processor's name; what is installed elsewhere never does.
set(QUOREL_BUNDLES lib/GNUstep/Bundles)
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  string(REGEX REPLACE "^/usr/" "" QUOREL_BUNDLES ${system_library}/Bundles)
endif()

# Warnings, optimisation and dependency files are this project's own affair; -fexec-charset is unknown to clang.
set(objc_includes ${objc_flags})
list(FILTER objc_includes INCLUDE REGEX "^-I/usr")
list(TRANSFORM objc_includes REPLACE "^-I" "")
list(FILTER objc_flags INCLUDE REGEX "^-(D|fno-strict|fexceptions|fobjc|fconstant-string)")
# Folders of the user who builds have no place in what is built.
list(FILTER gui_libs EXCLUDE REGEX "^-(L|rdynamic|shared-libgcc)")

add_library(quorel_gnustep INTERFACE)
# The runtime's headers lie among gcc's own, which must not come before clang's.
target_compile_options(quorel_gnustep INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-runtime=gcc;${objc_flags};-fvisibility=hidden>
  $<$<COMPILE_LANGUAGE:OBJCXX>:SHELL:-idirafter ${gcc_include}>)
target_include_directories(quorel_gnustep SYSTEM INTERFACE ${objc_includes})
target_link_libraries(quorel_gnustep INTERFACE quorel_options ${gui_libs})

# quorel_bundle(name EXTENSION ext INFO plist.in [PRODUCT Name] [DIRECTORY dir]
#               SOURCES ... [LIBRARIES ...] [RESOURCES ...])
#
# Builds <dir>/<Name>.<ext>: the executable <Name>, Resources/Info-gnustep.plist and the resources. A resource that lies
# in a Language.lproj folder keeps that folder. The plist is configured with @ONLY first. The target's property
# QUOREL_BUNDLE_PATH names the bundle. The code exports nothing: two bundles in one process cannot get in each
# other's way.
function(quorel_bundle name)
  cmake_parse_arguments(BUNDLE "" "EXTENSION;INFO;PRODUCT;DIRECTORY" "SOURCES;LIBRARIES;RESOURCES" ${ARGN})
  if(NOT BUNDLE_PRODUCT)
    set(BUNDLE_PRODUCT ${name})
  endif()
  if(NOT BUNDLE_DIRECTORY)
    set(BUNDLE_DIRECTORY ${CMAKE_BINARY_DIR})
  endif()
  set(path ${BUNDLE_DIRECTORY}/${BUNDLE_PRODUCT}.${BUNDLE_EXTENSION})

  add_library(${name} MODULE ${BUNDLE_SOURCES})
  target_link_libraries(${name} PRIVATE ${BUNDLE_LIBRARIES} quorel_gnustep)
  target_link_options(${name} PRIVATE -Wl,--no-undefined -Wl,--exclude-libs,ALL)
  set_target_properties(${name} PROPERTIES
    PREFIX "" SUFFIX "" OUTPUT_NAME ${BUNDLE_PRODUCT} LIBRARY_OUTPUT_DIRECTORY ${path}
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON QUOREL_BUNDLE_PATH ${path})

  configure_file(${BUNDLE_INFO} ${path}/Resources/Info-gnustep.plist @ONLY)
  set(copies)
  foreach(resource ${BUNDLE_RESOURCES})
    get_filename_component(source ${resource} ABSOLUTE)
    get_filename_component(file ${source} NAME)
    get_filename_component(folder ${source} DIRECTORY)
    get_filename_component(folder ${folder} NAME)
    if(folder MATCHES "\\.lproj$")
      set(file ${folder}/${file})
    endif()
    set(copy ${path}/Resources/${file})
    add_custom_command(OUTPUT ${copy} DEPENDS ${source}
      COMMAND ${CMAKE_COMMAND} -E copy ${source} ${copy})
    list(APPEND copies ${copy})
  endforeach()
  target_sources(${name} PRIVATE ${copies})
endfunction()
