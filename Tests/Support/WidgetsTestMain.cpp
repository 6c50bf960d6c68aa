#include <QApplication>

#include <gmock/gmock.h>

int main(int count, char** values) {
    testing::InitGoogleMock(&count, values);
    const QApplication application(count, values);
    return RUN_ALL_TESTS();
}
