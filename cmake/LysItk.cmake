# lys_find_itk(ITKIOGDCM ...): finds ITK with the modules named. Quietly: the package of GDCM, which ITK brings along,
# reports every one of its tools that is not installed.
macro(lys_find_itk)
  set(CMAKE_MESSAGE_LOG_LEVEL NOTICE)
  find_package(ITK 5.2 REQUIRED COMPONENTS ${ARGN})
  unset(CMAKE_MESSAGE_LOG_LEVEL)
endmacro()
