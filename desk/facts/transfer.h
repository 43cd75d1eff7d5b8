// Facts as bytes, for a pipe between two processes of one program.
#pragma once

#include "facts/facts.h"

#include <QByteArray>

#include <optional>

// Throws std::length_error where facts are more than a QByteArray can hold.
QByteArray BytesOf(const Facts& facts);

// The facts again; nothing if the bytes are not those of whole facts.
std::optional<Facts> FactsOf(const QByteArray& bytes);
