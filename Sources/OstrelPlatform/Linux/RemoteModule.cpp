#include "OstrelPlatform/Linux/RemoteModule.h"

#include "OstrelPlatform/Linux/QtRemoteReader.h"

extern "C" __attribute__((visibility("default"))) Ostrel::RemoteReader* ostrelMakeRemoteReader() {
    return new Ostrel::QtRemoteReader({});
}
