#include "protocols/pending_requests.h"

#include "protocols/json_rpc.h"

#include <algorithm>

namespace {

template <typename Work>
QByteArray AnswerBy(const QJsonValue& id, Work work) {
    try {
        return RpcResult(id, work());
    } catch (const RequestFailed& failure) {
        return RpcErrorAnswer(id, RpcError::RequestFailed, failure.why);
    }
}

// Nothing while the scripts have no models.
std::optional<QByteArray> AnswerAboutAll(const PendingRequest& request,
                                         const OpenScripts& scripts) {
    const auto all = scripts.all();
    if (!all) {
        return std::nullopt;
    }
    return AnswerBy(request.id,
                    [&] { return request.method->ofWorkspace(*all, request.params); });
}

std::optional<QByteArray> AnswerOf(const PendingRequest& request, const OpenScripts& scripts) {
    if (request.method->ofScript == nullptr) {
        return AnswerAboutAll(request, scripts);
    }
    if (!scripts.isExpected(request.uri, request.revision)) {
        return RpcErrorAnswer(request.id, RpcError::ContentModified,
                              QStringLiteral("the script has changed"));
    }
    const Script* const script = scripts.find(request.uri, request.revision);
    if (script == nullptr) {
        return std::nullopt;
    }
    return AnswerBy(request.id,
                    [&] { return request.method->ofScript(*script, request.params); });
}

}  // namespace

bool PendingRequests::cancel(const QJsonValue& id) {
    const auto found =
        std::find_if(requests_.begin(), requests_.end(),
                     [&id](const PendingRequest& request) { return request.id == id; });
    const bool isThere = found != requests_.end();
    if (isThere) {
        requests_.erase(found);
    }
    return isThere;
}

bool PendingRequests::isWaitedFor(const QString& uri, int revision) const {
    return std::any_of(requests_.begin(), requests_.end(), [&](const PendingRequest& request) {
        return request.uri == uri && request.revision == revision;
    });
}

std::vector<QByteArray> PendingRequests::takeAnswers(const OpenScripts& scripts) {
    std::vector<QByteArray> answers;
    std::vector<PendingRequest> waiting;
    for (PendingRequest& request : requests_) {
        if (std::optional<QByteArray> answer = AnswerOf(request, scripts)) {
            answers.push_back(std::move(*answer));
        } else {
            waiting.push_back(std::move(request));
        }
    }
    requests_ = std::move(waiting);
    return answers;
}
