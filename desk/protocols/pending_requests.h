// Requests that wait for the models that they are about.
#pragma once

#include "protocols/methods.h"
#include "protocols/open_scripts.h"

#include <QByteArray>

struct PendingRequest {
    QJsonValue id;
    const Method* method;
    QJsonObject params;
    QString uri;   // empty for a request about all scripts
    int revision;  // of the text that was the latest when it came
};

class PendingRequests {
public:
    void add(const PendingRequest& request) { requests_.push_back(request); }

    // Forgets the request. False if none has that identifier.
    bool cancel(const QJsonValue& id);

    // Whether one waits for the model of that text.
    bool isWaitedFor(const QString& uri, int revision) const;

    // The answers to those that can be answered, or never will be, in the order of the requests.
    std::vector<QByteArray> takeAnswers(const OpenScripts& scripts);

private:
    std::vector<PendingRequest> requests_;
};
