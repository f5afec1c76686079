# Sources that fuzz targets call and no library exports.
set(LYS_FUZZED_SOURCES
  cli/LegendSettings.cpp cli/Messages.cpp cli/Numbers.cpp
  host/lyr_volume/LyrDicomCodestream.cpp host/lyr_volume/LyrDicomDecoder.cpp host/lyr_volume/LyrDicomRunLength.cpp
  host/lyr_volume/LyrSampleType.cpp
  host/lys_core/PresetFileName.cpp host/lys_core/PresetIndex.cpp)
list(TRANSFORM LYS_FUZZED_SOURCES PREPEND "${CMAKE_SOURCE_DIR}/")
