// Prints the vocabulary, a line "GROUP KEY" for every key, in the order of its definition. The
// build makes the completions and the manual's list of names from it.

#include <cstdlib>
#include <iostream>

#include <tarnwick/vocabulary.h>

int main() {
    for (const auto& group : Tarnwick::Parser::vocabularyGroups()) {
        for (const auto& key : group.keys) {
            std::cout << *group.name << ' ' << *key.name << '\n';
        }
    }
    return std::cout.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
