#include "OstrelPlatform/Linux/Desktop/LinuxWorkspace.h"

#include "OstrelCore/Files/Paths.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#include <string>
#include <vector>

namespace Ostrel {

bool LinuxWorkspace::openURL(const std::string& url) {
    const QUrl parsed(QString::fromStdString(url));
    return parsed.isValid() && QDesktopServices::openUrl(parsed);
}

bool LinuxWorkspace::openFile(const std::string& path) {
    const QString file = QString::fromStdString(existingPath(path));
    return QFileInfo::exists(file) && QDesktopServices::openUrl(QUrl::fromLocalFile(file));
}

bool LinuxWorkspace::launch(const std::string& program, const std::vector<std::string>& arguments) {
    return programs_.launch(program, arguments);
}

} // namespace Ostrel
