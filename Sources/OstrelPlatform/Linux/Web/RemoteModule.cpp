#include "OstrelPlatform/Linux/Web/RemoteModule.h"

#include "OstrelPlatform/Linux/Web/QtRemoteReader.h"

extern "C" __attribute__((visibility("default"))) Ostrel::RemoteReader* ostrelMakeRemoteReader() {
    return new Ostrel::QtRemoteReader({});
}
