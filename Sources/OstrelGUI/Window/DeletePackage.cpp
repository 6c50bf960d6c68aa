#include "OstrelGUI/Window/DeletePackage.h"

#include "OstrelGUI/SessionPaths.h"
#include "OstrelGUI/Window/LibraryGroups.h"
#include "OstrelGUI/Window/QtText.h"

#include <algorithm>

namespace Ostrel {

DeletePackageRequest DeletePackageRequest::make(const LibraryGroup& group) {
    DeletePackageRequest request{group.packageName, {}, group.items.size()};
    for (const WidgetLibraryItem& item : group.items) {
        std::string root = packageRootPath(item.path);
        if (std::find(request.rootPaths.begin(), request.rootPaths.end(), root) == request.rootPaths.end())
            request.rootPaths.push_back(std::move(root));
    }
    return request;
}

QString deleteConfirmationText(const DeletePackageRequest* request) {
    if (!request)
        return QStringLiteral("This will permanently delete the selected skin pack. This cannot be undone.");
    const QString count = QString::number(request->itemCount);
    // Not by arg(): a path may hold a per cent sign and a digit.
    if (request->rootPaths.size() == 1)
        return QStringLiteral("This will permanently delete ") + count + QStringLiteral(" widget(s) and the folder at ")
            + textOf(request->rootPaths.front()) + QStringLiteral(". This cannot be undone.");
    return QStringLiteral("This will permanently delete ") + count + QStringLiteral(" widget(s) across ")
        + QString::number(request->rootPaths.size()) + QStringLiteral(" folders. This cannot be undone.");
}

} // namespace Ostrel
