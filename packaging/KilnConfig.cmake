include("${CMAKE_CURRENT_LIST_DIR}/KilnTargets.cmake")
