#include "protocols/json_rpc.h"

#include "qyx_text.h"

#include <QJsonDocument>

namespace {

constexpr QLatin1String ID = "id"_L1;
constexpr QLatin1String METHOD = "method"_L1;
constexpr QLatin1String PARAMS = "params"_L1;
constexpr QLatin1String RESULT = "result"_L1;
constexpr QLatin1String ERROR_MEMBER = "error"_L1;

QByteArray Json(QJsonObject message) {
    message[QStringLiteral("jsonrpc")] = QStringLiteral("2.0");
    return QJsonDocument(message).toJson(QJsonDocument::Compact);
}

bool IsId(const QJsonValue& value) {
    return value.isDouble() || value.isString();
}

RpcKind KindOf(const QJsonObject& message) {
    const bool hasId = message.contains(ID);
    if (message.contains(METHOD)) {
        const bool isSound = message[METHOD].isString() && (!hasId || IsId(message[ID]));
        return !isSound ? RpcKind::NoMessage : hasId ? RpcKind::Request : RpcKind::Notification;
    }
    const bool isAnswer = message.contains(RESULT) || message.contains(ERROR_MEMBER);
    return hasId && isAnswer ? RpcKind::Response : RpcKind::NoMessage;
}

QJsonValue IdOf(const QJsonObject& message) {
    return IsId(message[ID]) ? message[ID] : QJsonValue();
}

}  // namespace

RpcMessage RpcMessageOf(const QByteArray& json) {
    QJsonParseError fault = {};
    const QJsonDocument document = QJsonDocument::fromJson(json, &fault);
    if (fault.error != QJsonParseError::NoError) {
        return {RpcKind::NoJson, QJsonValue(), {}, {}, {}};
    }
    const QJsonObject message = document.object();
    return {KindOf(message), IdOf(message), message[METHOD].toString(),
            message[PARAMS].toObject(), message.value(RESULT)};
}

QByteArray RpcResult(const QJsonValue& id, const QJsonValue& result) {
    return Json({{ID, id}, {RESULT, result.isUndefined() ? QJsonValue() : result}});
}

QByteArray RpcErrorAnswer(const QJsonValue& id, RpcError error, const QString& text) {
    const QJsonObject what = {{QStringLiteral("code"), static_cast<int>(error)},
                              {QStringLiteral("message"), text}};
    return Json({{ID, id}, {ERROR_MEMBER, what}});
}

QByteArray RpcNotification(const QString& method, const QJsonObject& params) {
    return Json({{METHOD, method}, {PARAMS, params}});
}

QByteArray RpcRequest(int id, const QString& method, const QJsonObject& params) {
    return Json({{ID, id}, {METHOD, method}, {PARAMS, params}});
}
