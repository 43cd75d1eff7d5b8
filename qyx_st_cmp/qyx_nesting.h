// The limit on nesting, shared by all parsers that recurse.
#pragma once

// The levels of nesting, counted over all constructs together, that a script may reach; the body
// of its unit is the first. The deepest construct, a call within a comparison within a call,
// takes 577 bytes of stack a level, so all levels take less than 3 of the 4 MiB that are promised
// to do.
constexpr int NESTING_LIMIT = 4500;

// One level of nesting for as long as it lives. Whatever recurses into itself (parentheses,
// right operands, actual parameters, array indices, bodies of statements) makes one first, so
// that no source can exhaust the stack: beyond the limit it aborts with "Too deep nesting".
class NestingGuard {
public:
    NestingGuard();
    ~NestingGuard();
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;

private:
    static int depth_;
};
