#include "protocols/methods.h"

#include <algorithm>

namespace {

// A row about one script: {"textDocument/hover", Hover, nullptr, "hoverProvider", nullptr}.
const std::vector<Method>& Methods() {
    static const std::vector<Method> methods = {};
    return methods;
}

}  // namespace

const Method* MethodNamed(const QString& name) {
    const std::vector<Method>& methods = Methods();
    const auto found = std::find_if(
        methods.begin(), methods.end(),
        [&name](const Method& method) { return name == QLatin1String(method.name); });
    return found == methods.end() ? nullptr : &*found;
}

QJsonObject MethodCapabilities() {
    QJsonObject capabilities;
    for (const Method& method : Methods()) {
        if (method.capability != nullptr) {
            capabilities[QLatin1String(method.capability)] =
                method.options == nullptr ? QJsonValue(true) : method.options();
        }
    }
    return capabilities;
}
