#include "protocols/open_scripts.h"

#include <QThread>

#include <algorithm>

void OpenScripts::setSettings(const Settings& settings) {
    if (settings == settings_) {
        return;
    }
    settings_ = settings;
    hasChanged_ = true;
    for (auto& [uri, document] : documents_) {
        document.building.reset();
        document.script.reset();
    }
}

// ---------------------------------------------------------------------------------------------
// Texts
// ---------------------------------------------------------------------------------------------

void OpenScripts::setRevision(Document& document, int version) {
    document.version = version;
    document.revision = ++revisions_;
    hasChanged_ = true;
}

void OpenScripts::open(const QString& uri, int version, const QString& text) {
    Document& document = documents_[uri];
    document.text = EditorText(text);
    setRevision(document, version);
}

bool OpenScripts::change(const QString& uri, int version, const QJsonArray& changes) {
    const auto found = documents_.find(uri);
    if (found == documents_.end()) {
        return false;
    }
    for (const QJsonValue& change : changes) {
        found->second.text.change(change.toObject());
    }
    setRevision(found->second, version);
    return true;
}

bool OpenScripts::close(const QString& uri) {
    hasChanged_ = true;
    return documents_.erase(uri) > 0;
}

// ---------------------------------------------------------------------------------------------
// Models
// ---------------------------------------------------------------------------------------------

const OpenScripts::Document* OpenScripts::documentOf(const QString& uri) const {
    const auto found = documents_.find(uri);
    return found == documents_.end() ? nullptr : &found->second;
}

int OpenScripts::revisionOf(const QString& uri) const {
    const Document* const document = documentOf(uri);
    return document == nullptr ? NONE : document->revision;
}

const Script* OpenScripts::find(const QString& uri, int revision) const {
    const Document* const document = documentOf(uri);
    const bool isThere =
        document != nullptr && document->script && document->scriptRevision == revision;
    return isThere ? &*document->script : nullptr;
}

bool OpenScripts::isExpected(const QString& uri, int revision) const {
    const Document* const document = documentOf(uri);
    return document != nullptr &&
           (document->revision == revision || find(uri, revision) != nullptr ||
            (document->building && document->building->revision == revision));
}

std::optional<std::vector<const Script*>> OpenScripts::all() const {
    std::vector<const Script*> scripts;
    for (const auto& [uri, document] : documents_) {
        if (!document.isCurrent()) {
            return std::nullopt;
        }
        scripts.push_back(&*document.script);
    }
    return scripts;
}

QString OpenScripts::failureOf(const QString& uri) const {
    const Document* const document = documentOf(uri);
    return document == nullptr ? QString() : document->failure;
}

QStringList OpenScripts::takeFinished() {
    QStringList finished;
    std::swap(finished, finished_);
    return finished;
}

// ---------------------------------------------------------------------------------------------
// Compiles
// ---------------------------------------------------------------------------------------------

bool OpenScripts::hasRoom() const {
    const auto running =
        std::count_if(documents_.begin(), documents_.end(),
                      [](const auto& entry) { return entry.second.building.has_value(); });
    return running < QThread::idealThreadCount();
}

void OpenScripts::compile(const IsWanted& isWanted) {
    hasChanged_ = false;
    for (auto& [uri, document] : documents_) {
        const bool isOutdated =
            document.building && document.building->revision != document.revision;
        if (isOutdated && !isWanted(uri, document.building->revision)) {
            document.building.reset();
        }
    }
    for (auto& [uri, document] : documents_) {
        if (!document.building && !document.isCurrent() && hasRoom()) {
            start(uri, document);
        }
    }
}

void OpenScripts::start(const QString& uri, Document& document) {
    const QString& text = document.text.text();
    document.building.emplace(
        Building{ScriptBuild(uri, text, settings_), document.revision, document.version, text});
    ScriptBuild& build = document.building->build;
    if (build.descriptor() < 0 && !build.goOn()) {
        finish(uri, document);
    }
}

void OpenScripts::finish(const QString& uri, Document& document) {
    Building building = std::move(*document.building);
    document.building.reset();
    document.script.emplace(
        Script{uri, building.version, building.build.model(), LspLines(building.text), client_});
    document.scriptRevision = building.revision;
    document.failure = building.build.failure();
    if (document.isCurrent()) {
        finished_.append(uri);
    }
    hasChanged_ = true;
}

std::vector<int> OpenScripts::descriptors() const {
    std::vector<int> descriptors;
    for (const auto& [uri, document] : documents_) {
        if (document.building) {
            descriptors.push_back(document.building->build.descriptor());
        }
    }
    return descriptors;
}

std::optional<OpenScripts::Clock::time_point> OpenScripts::deadline() const {
    std::optional<Clock::time_point> first;
    for (const auto& [uri, document] : documents_) {
        if (document.building) {
            const Clock::time_point deadline = document.building->build.deadline();
            first = first ? std::min(*first, deadline) : deadline;
        }
    }
    return first;
}

void OpenScripts::goOn(int descriptor) {
    for (auto& [uri, document] : documents_) {
        if (document.building && document.building->build.descriptor() == descriptor) {
            if (!document.building->build.goOn()) {
                finish(uri, document);
            }
            return;
        }
    }
}

void OpenScripts::stopLate(Clock::time_point now) {
    for (auto& [uri, document] : documents_) {
        if (document.building && document.building->build.deadline() <= now) {
            document.building->build.stop();
            finish(uri, document);
        }
    }
}
