// The mutator of sources, as a module has it.

#include "any_mutator.h"
#include "mutator.h"

namespace {

class SourceMutator : public AnyMutator {
public:
    SourceMutator(std::istream& dictionary, unsigned seed)
        : words_(dictionary), mutator_(words_, seed) {}

    std::string mutate(std::string_view input, std::string_view other,
                       std::size_t maxSize) override {
        return mutator_.mutate(input, other, maxSize);
    }

private:
    Words words_;
    Mutator mutator_;
};

}  // namespace

std::unique_ptr<AnyMutator> MakeMutator(std::istream& dictionary, unsigned seed) {
    return std::make_unique<SourceMutator>(dictionary, seed);
}
