// The tests of windows: an application without a screen.
#include <clocale>

#include <gtest/gtest.h>

#include <window/guarded_application.h>

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    window::GuardedApplication application(argc, argv);
    application.onFailure = [](const TvString& what) { ADD_FAILURE() << what.utf8(); };
    std::setlocale(LC_ALL, "");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
