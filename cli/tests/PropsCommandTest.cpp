#include <gtest/gtest.h>
TEST(Props, Placeholder) {}
