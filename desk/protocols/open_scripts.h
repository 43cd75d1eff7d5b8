// The scripts that are open in an editor, and the models of their texts as they are made.
//
// Each text of a script has a number of its own, its revision. A model is made of the latest one;
// one that is under way for an earlier text goes on only while somebody waits for it.
#pragma once

#include "protocols/editor_text.h"
#include "protocols/script.h"
#include "protocols/script_build.h"

#include <QJsonArray>
#include <QStringList>

#include <functional>
#include <map>
#include <optional>

class OpenScripts {
public:
    using Clock = ScriptBuild::Clock;
    using IsWanted = std::function<bool(const QString& uri, int revision)>;

    // The capabilities of the client, for the scripts.
    void setClient(const QJsonObject& client) { client_ = client; }
    // All models are made anew.
    void setSettings(const Settings& settings);

    // A script that is open already gets a new text.
    void open(const QString& uri, int version, const QString& text);
    // False if it is not open.
    bool change(const QString& uri, int version, const QJsonArray& changes);
    bool close(const QString& uri);

    // NONE if it is not open.
    int revisionOf(const QString& uri) const;
    // The script with that text, null while there is no model of it.
    const Script* find(const QString& uri, int revision) const;
    // Whether there is a model of that text, or will be.
    bool isExpected(const QString& uri, int revision) const;
    // All of them, none while one has no model of its latest text.
    std::optional<std::vector<const Script*>> all() const;
    // Why the model of the script is not complete, empty if it is.
    QString failureOf(const QString& uri) const;

    // Whether compile() has something to do.
    bool hasChanged() const { return hasChanged_; }
    // Something has become useless, perhaps.
    void reconsider() { hasChanged_ = true; }
    // Ends what has become useless and starts what is to be made, as many compiles at a time as
    // there are processors.
    void compile(const IsWanted& isWanted);

    // Where compiles tell something, and when the first of them is late.
    std::vector<int> descriptors() const;
    std::optional<Clock::time_point> deadline() const;
    // Takes what is there to be read.
    void goOn(int descriptor);
    void stopLate(Clock::time_point now);

    // The scripts that have got a model of their latest text since this was last called.
    QStringList takeFinished();

private:
    struct Building {
        ScriptBuild build;
        int revision;
        int version;
        QString text;
    };
    struct Document {
        EditorText text;
        int version = 0;
        int revision = 0;
        std::optional<Building> building;
        std::optional<Script> script;
        int scriptRevision = 0;
        QString failure;

        bool isCurrent() const { return script && scriptRevision == revision; }
    };

    std::map<QString, Document> documents_;
    QJsonObject client_;
    Settings settings_;
    int revisions_ = 0;
    bool hasChanged_ = false;
    QStringList finished_;

    const Document* documentOf(const QString& uri) const;
    void setRevision(Document& document, int version);
    bool hasRoom() const;
    void start(const QString& uri, Document& document);
    void finish(const QString& uri, Document& document);
};
