#include <gtest/gtest.h>
#include "ImageProperties.h"
TEST(Reader, Placeholder) { EXPECT_FALSE(imageio::readProperties({}).has_value()); }
