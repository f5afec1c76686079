# Sources of the command line that fuzz targets call; they belong to no library.
set(LYS_FUZZED_SOURCES
  "${CMAKE_SOURCE_DIR}/cli/LegendSettings.cpp" "${CMAKE_SOURCE_DIR}/cli/Messages.cpp" "${CMAKE_SOURCE_DIR}/cli/Numbers.cpp")
