#include "protocols/language_server.h"

#include "protocols/framing.h"
#include "protocols/lsp_diagnostics.h"

#include "qyx_text.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr QLatin1String SETTINGS_SECTION = "yxst"_L1;

constexpr int WARNING = 2;  // the type of a message

// Documents are sent whole when they are opened, then change by change.
constexpr int INCREMENTAL = 2;

QJsonObject Capabilities() {
    QJsonObject capabilities = MethodCapabilities();
    capabilities[QStringLiteral("positionEncoding")] = QStringLiteral("utf-16");
    capabilities[QStringLiteral("textDocumentSync")] =
        QJsonObject{{QStringLiteral("openClose"), true}, {QStringLiteral("change"), INCREMENTAL}};
    return capabilities;
}

QJsonObject ServerInfo() {
    return {{QStringLiteral("name"), QStringLiteral("yxst")},
            {QStringLiteral("version"), QStringLiteral(YXST_VERSION)}};
}

QJsonObject DocumentIn(const QJsonObject& params) {
    return params[QStringLiteral("textDocument")].toObject();
}

QString UriIn(const QJsonObject& document) {
    return document[QStringLiteral("uri")].toString();
}

int VersionIn(const QJsonObject& document) {
    return document[QStringLiteral("version")].toInt();
}

QString UriOf(const QJsonValue& value) {
    return value.isString() ? value.toString() : UriIn(value.toObject());
}

// The script that a request is about: methods.h tells where it has it.
QString ScriptOf(const QJsonObject& params) {
    const QJsonValue first = params[QStringLiteral("arguments")].toArray().first();
    for (const QJsonValue& value :
         {params[QStringLiteral("textDocument")], params[QStringLiteral("data")], first}) {
        if (const QString uri = UriOf(value); !uri.isEmpty()) {
            return uri;
        }
    }
    return {};
}

}  // namespace

const LanguageServer::Notification LanguageServer::NOTIFICATIONS[] = {
    {"initialized", &LanguageServer::initialized},
    {"$/cancelRequest", &LanguageServer::cancel},
    {"workspace/didChangeConfiguration", &LanguageServer::changeSettings},
    {"textDocument/didOpen", &LanguageServer::open},
    {"textDocument/didChange", &LanguageServer::change},
    {"textDocument/didClose", &LanguageServer::close},
};

LanguageServer::LanguageServer() : manual_(InstalledManual()) {}

void LanguageServer::send(const QByteArray& message) {
    output_.append(Framed(message));
}

void LanguageServer::fail(const QJsonValue& id, RpcError error, const QString& text) {
    send(RpcErrorAnswer(id, error, text));
}

void LanguageServer::log(const QString& text) {
    send(RpcNotification(QStringLiteral("window/logMessage"),
                         {{QStringLiteral("type"), WARNING}, {QStringLiteral("message"), text}}));
}

void LanguageServer::refuse(const QString& fault) {
    fail(QJsonValue(), RpcError::ParseError, fault);
}

// ---------------------------------------------------------------------------------------------
// Messages
// ---------------------------------------------------------------------------------------------

void LanguageServer::take(const QByteArray& message) {
    const RpcMessage read = RpcMessageOf(message);
    switch (read.kind) {
        case RpcKind::Request:
            return takeRequest(read);
        case RpcKind::Notification:
            return takeNotification(read);
        case RpcKind::Response:
            return takeResponse(read);
        case RpcKind::NoMessage:
            return fail(read.id, RpcError::InvalidRequest, QStringLiteral("no request"));
        case RpcKind::NoJson:
            return fail(read.id, RpcError::ParseError, QStringLiteral("no JSON"));
    }
}

void LanguageServer::takeRequest(const RpcMessage& message) {
    const bool isFirst = message.method == QLatin1String("initialize");
    if (isFirst && phase_ == Phase::New) {
        initialize(message);
    } else if (phase_ == Phase::New) {
        fail(message.id, RpcError::ServerNotInitialized, QStringLiteral("not initialized"));
    } else if (isFirst || phase_ == Phase::ShutDown) {
        fail(message.id, RpcError::InvalidRequest,
             isFirst ? QStringLiteral("initialized already") : QStringLiteral("shut down"));
    } else {
        takeRequestWhileRunning(message);
    }
}

void LanguageServer::takeRequestWhileRunning(const RpcMessage& message) {
    if (message.method == QLatin1String("shutdown")) {
        phase_ = Phase::ShutDown;
        send(RpcResult(message.id, QJsonValue()));
    } else if (const Method* const method = MethodNamed(message.method)) {
        ask(message, *method);
    } else {
        fail(message.id, RpcError::MethodNotFound,
             QStringLiteral("there is no method ") + message.method);
    }
}

void LanguageServer::ask(const RpcMessage& message, const Method& method) {
    const QString uri = method.ofScript == nullptr ? QString() : ScriptOf(message.params);
    const int revision = scripts_.revisionOf(uri);
    if (method.ofScript != nullptr && revision == NONE) {
        return fail(message.id, RpcError::InvalidParams,
                    uri.isEmpty() ? QStringLiteral("no script is named")
                                  : QStringLiteral("not open: ") + uri);
    }
    requests_.add({message.id, &method, message.params, uri, revision});
    sendAnswers();
}

void LanguageServer::takeNotification(const RpcMessage& message) {
    if (message.method == QLatin1String("exit")) {
        isOver_ = true;
    }
    if (phase_ != Phase::Running) {
        return;
    }
    const auto* const found = std::find_if(
        std::begin(NOTIFICATIONS), std::end(NOTIFICATIONS),
        [&](const Notification& row) { return message.method == QLatin1String(row.name); });
    if (found != std::end(NOTIFICATIONS)) {
        (this->*found->take)(message.params);
    }
}

// ---------------------------------------------------------------------------------------------
// Begin and settings
// ---------------------------------------------------------------------------------------------

bool LanguageServer::can(const char* group, const char* name) const {
    return client_[QLatin1String(group)].toObject()[QLatin1String(name)].toBool();
}

void LanguageServer::initialize(const RpcMessage& message) {
    phase_ = Phase::Running;
    client_ = message.params[QStringLiteral("capabilities")].toObject();
    scripts_.setClient(client_);
    send(RpcResult(message.id, QJsonObject{{QStringLiteral("capabilities"), Capabilities()},
                                           {QStringLiteral("serverInfo"), ServerInfo()}}));
    applySettings(message.params[QStringLiteral("initializationOptions")].toObject());
}

void LanguageServer::initialized(const QJsonObject&) {
    askForSettings();
}

// A client sends its settings by section, or none where it is to be asked for them.
void LanguageServer::changeSettings(const QJsonObject& params) {
    const QJsonObject all = params[QStringLiteral("settings")].toObject();
    if (all[SETTINGS_SECTION].isObject()) {
        applySettings(all);
    } else {
        askForSettings();
    }
}

void LanguageServer::askForSettings() {
    if (!can("workspace", "configuration")) {
        return;
    }
    const QJsonObject item = {{QStringLiteral("section"), SETTINGS_SECTION}};
    settingsRequest_ = ++sentRequests_;
    send(RpcRequest(settingsRequest_, QStringLiteral("workspace/configuration"),
                    {{QStringLiteral("items"), QJsonArray{item}}}));
}

void LanguageServer::takeResponse(const RpcMessage& message) {
    const bool isSettings = message.id.isDouble() && message.id.toInt() == settingsRequest_;
    const QJsonValue told = message.result.toArray().first();
    if (isSettings && told.isObject()) {
        applySettings(told.toObject());
    }
}

void LanguageServer::applySettings(const QJsonObject& told) {
    const QJsonValue section = told[SETTINGS_SECTION];
    const ToldSettings read = SettingsOf(section.isObject() ? section.toObject() : told);
    for (const QString& fault : read.faults) {
        log(fault);
    }
    scripts_.setSettings(read.settings);
}

// ---------------------------------------------------------------------------------------------
// Scripts
// ---------------------------------------------------------------------------------------------

void LanguageServer::open(const QJsonObject& params) {
    const QJsonObject document = DocumentIn(params);
    scripts_.open(UriIn(document), VersionIn(document),
                  document[QStringLiteral("text")].toString());
    sendAnswers();
}

void LanguageServer::change(const QJsonObject& params) {
    const QJsonObject document = DocumentIn(params);
    const QJsonArray changes = params[QStringLiteral("contentChanges")].toArray();
    if (!scripts_.change(UriIn(document), VersionIn(document), changes)) {
        log(QStringLiteral("not open: ") + UriIn(document));
    }
    sendAnswers();
}

void LanguageServer::close(const QJsonObject& params) {
    const QString uri = UriIn(DocumentIn(params));
    if (scripts_.close(uri)) {
        publish(uri);
    }
    sendAnswers();
}

void LanguageServer::cancel(const QJsonObject& params) {
    const QJsonValue id = params[QStringLiteral("id")];
    if (requests_.cancel(id)) {
        scripts_.reconsider();
        fail(id, RpcError::RequestCancelled, QStringLiteral("cancelled"));
    }
}

void LanguageServer::sendAnswers() {
    for (const QByteArray& answer : requests_.takeAnswers(scripts_)) {
        send(answer);
    }
}

// Of a script that is closed there is nothing to say.
void LanguageServer::publish(const QString& uri) {
    QJsonObject params = {{QStringLiteral("uri"), uri}};
    QJsonArray diagnostics;
    if (const Script* const script = scripts_.find(uri, scripts_.revisionOf(uri))) {
        params[QStringLiteral("version")] = script->version;
        diagnostics = LspDiagnostics(*script, manual_);
    }
    if (const QString failure = scripts_.failureOf(uri); !failure.isEmpty()) {
        diagnostics.prepend(LspFailure(failure));
        log(uri + QStringLiteral(": ") + failure);
    }
    params[QStringLiteral("diagnostics")] = diagnostics;
    send(RpcNotification(QStringLiteral("textDocument/publishDiagnostics"), params));
}

// ---------------------------------------------------------------------------------------------
// Compiles
// ---------------------------------------------------------------------------------------------

void LanguageServer::sendFinished() {
    for (const QString& uri : scripts_.takeFinished()) {
        publish(uri);
    }
    sendAnswers();
}

void LanguageServer::compile() {
    scripts_.compile([this](const QString& uri, int revision) {
        return requests_.isWaitedFor(uri, revision);
    });
    sendFinished();
}

void LanguageServer::goOn(int descriptor) {
    scripts_.goOn(descriptor);
    sendFinished();
}

void LanguageServer::stopLate() {
    scripts_.stopLate(OpenScripts::Clock::now());
    sendFinished();
}
