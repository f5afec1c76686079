# lys_find_itk(ITKIOGDCM ...): finds ITK with the modules named, and GDCM, which it reads DICOM with. Quietly: GDCM's package
# file reports every one of its tools that is not installed.
macro(lys_find_itk)
  set(CMAKE_MESSAGE_LOG_LEVEL NOTICE)
  find_package(ITK 5.2 REQUIRED COMPONENTS ${ARGN})
  find_package(GDCM REQUIRED)
  unset(CMAKE_MESSAGE_LOG_LEVEL)
endmacro()
