// How much a finding matters.
#pragma once

enum class Level : unsigned char { Note, Warning, Error };
