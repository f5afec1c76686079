#include <EveryProperty.h>
#include <StoredClasses.h>

INSTANTIATE_TEST_SUITE_P(Class, EveryProperty, testing::ValuesIn(storedclasses::COLORTABLE), nameOfClass);
