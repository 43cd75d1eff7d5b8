// JSON-RPC 2.0: what a message is, and how answers are put together.
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

// Those of JSON-RPC and of the language server protocol.
enum class RpcError : int {
    ParseError = -32700,
    InvalidRequest = -32600,
    MethodNotFound = -32601,
    InvalidParams = -32602,
    ServerNotInitialized = -32002,
    RequestFailed = -32803,
    ContentModified = -32801,
    RequestCancelled = -32800
};

enum class RpcKind : unsigned char { Request, Notification, Response, NoJson, NoMessage };

struct RpcMessage {
    RpcKind kind;
    QJsonValue id;  // of a request or a response, null otherwise
    QString method;
    QJsonObject params;  // empty where they are missing or no object
    QJsonValue result;   // undefined where a response tells an error
};

RpcMessage RpcMessageOf(const QByteArray& json);

// Each without the head that framing puts before it.
QByteArray RpcResult(const QJsonValue& id, const QJsonValue& result);
QByteArray RpcErrorAnswer(const QJsonValue& id, RpcError error, const QString& text);
QByteArray RpcNotification(const QString& method, const QJsonObject& params);
QByteArray RpcRequest(int id, const QString& method, const QJsonObject& params);
