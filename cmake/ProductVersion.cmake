# The product's identity, for CMake files as variables and for sources as "ProductVersion.h" (target quorel_product).

set(QUOREL_BUILD "1" CACHE STRING "Build number, shown behind the version")
set(QUOREL_COPYRIGHT "Copyright © 2026 the Quorel developers" CACHE STRING "Copyright line of the product")
set(QUOREL_UPDATE_FEED "" CACHE STRING "Address of the update feed (https); empty: every update check fails")

configure_file(${CMAKE_SOURCE_DIR}/cmake/ProductVersion.h.in ${CMAKE_BINARY_DIR}/generated/ProductVersion.h @ONLY)
add_library(quorel_product INTERFACE)
target_include_directories(quorel_product INTERFACE ${CMAKE_BINARY_DIR}/generated)
