// Facts as bytes, for a pipe between two processes of one program.
#pragma once

#include "facts/facts.h"

#include <QByteArray>

#include <functional>
#include <optional>
#include <string_view>

// Hands the bytes of facts to whoever takes them, piece by piece.
void PassBytes(const Facts& facts, const std::function<void(std::string_view)>& take);

// The facts again; nothing if the bytes are not those of whole facts.
std::optional<Facts> FactsOf(const QByteArray& bytes);
