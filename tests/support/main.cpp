#include <clocale>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Tests must pass under any locale; a number written through one shows here.
    std::setlocale(LC_ALL, "");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
