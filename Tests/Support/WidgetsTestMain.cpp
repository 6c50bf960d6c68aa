#include <QApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

int main(int count, char** values) {
    testing::InitGoogleMock(&count, values);
    const QApplication application(count, values);
    return RUN_ALL_TESTS();
}
