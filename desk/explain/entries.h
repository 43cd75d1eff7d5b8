// The entries of the manual that explain what the programs say.
//
// An entry is a heading of a page with a line "<!-- id: ID, ID... -->" below it, and all that
// stands between that line and the next heading. The heading is the text of a message, in which a
// single capital letter other than "A" stands for what varies. Several entries may have one
// identifier. With "reason" in place of "id" it is the entry of a help or a lint and its heading
// a title.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

struct Entry {
    QStringList ids;
    bool isMessage;     // of the compiler, else a reason
    QString title;      // Markdown
    QStringList body;   // Markdown
    QStringList frame;  // the script that its statements stand in; empty if it has none alone
};

// The entries of pages that follow each other, each of which begins with a heading "# TITLE".
std::vector<Entry> ReadEntries(const QStringList& markdown);

// The entries of the pages that are part of this program.
std::vector<Entry> EntriesOfManual();
