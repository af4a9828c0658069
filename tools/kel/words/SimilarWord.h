/// \file
/// SimilarWord: the word that somebody may have meant.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kel::tool {

/// Finds the word that is most similar to a mistyped one among those that it is offered.
class SimilarWord {
public:
    explicit SimilarWord(std::string_view typed);

    /// Compares a word. Words of more than 64 bytes are never similar.
    void offer(std::string_view word);

    /// Returns the most similar word, or nothing if no word is similar.
    const std::string& best() const { return best_; }

    /// Returns ` (did you mean "WORD"?)`, or nothing if no word is similar.
    std::string question() const;

private:
    std::string typed_;
    std::string best_;
    size_t distance_; ///< of the best word: how many changes of a character lead to it
};

} // namespace kel::tool
