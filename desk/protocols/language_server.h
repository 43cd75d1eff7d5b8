// The language server without its streams: messages go in and out, and compiles are under way in
// between. Nothing here waits.
#pragma once

#include "protocols/json_rpc.h"
#include "protocols/open_scripts.h"
#include "protocols/pending_requests.h"

class LanguageServer {
public:
    LanguageServer();

    // Takes a message of the client, without its head.
    void take(const QByteArray& message);

    // Tells the client that its messages cannot be read any further.
    void refuse(const QString& fault);

    // What is to be sent, heads and all; whoever sends it takes it away.
    QByteArray& output() { return output_; }

    // Whether the client has said goodbye, and whether it had announced that.
    bool isOver() const { return isOver_; }
    bool wasShutDown() const { return phase_ == Phase::ShutDown; }

    // The compiles: see OpenScripts. It is best to start them when no message is there to be
    // taken.
    const OpenScripts& scripts() const { return scripts_; }
    void compile();
    void goOn(int descriptor);
    void stopLate();

private:
    enum class Phase : unsigned char { New, Running, ShutDown };
    using Taker = void (LanguageServer::*)(const QJsonObject& params);
    struct Notification {
        const char* name;
        Taker take;
    };
    static const Notification NOTIFICATIONS[];

    Phase phase_ = Phase::New;
    bool isOver_ = false;
    QByteArray output_;
    QString manual_;
    QJsonObject client_;  // its capabilities
    OpenScripts scripts_;
    PendingRequests requests_;
    int sentRequests_ = 0;
    int settingsRequest_ = 0;  // the latest that asks for settings

    void send(const QByteArray& message);
    void fail(const QJsonValue& id, RpcError error, const QString& text);
    void log(const QString& text);
    bool can(const char* group, const char* name) const;

    void takeRequest(const RpcMessage& message);
    void takeRequestWhileRunning(const RpcMessage& message);
    void takeNotification(const RpcMessage& message);
    void takeResponse(const RpcMessage& message);
    void initialize(const RpcMessage& message);
    void ask(const RpcMessage& message, const Method& method);

    void initialized(const QJsonObject& params);
    void exit(const QJsonObject& params);
    void cancel(const QJsonObject& params);
    void changeSettings(const QJsonObject& params);
    void open(const QJsonObject& params);
    void change(const QJsonObject& params);
    void close(const QJsonObject& params);

    void askForSettings();
    void applySettings(const QJsonObject& told);
    void sendFinished();
    void sendAnswers();
    void publish(const QString& uri);
};
