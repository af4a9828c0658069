/// \file
/// PieceStream: an input stream whose behaviour a test sets and whose calls it counts.
#pragma once

#include "streams/JInputStream.h"

#include <algorithm>
#include <cstring>
#include <kel/JException.h>
#include <string>
#include <utility>

class PieceStream : public JInputStream {
public:
    explicit PieceStream(std::string bytes) : data(std::move(bytes)) {}

    std::string data;
    int32_t largestPiece = INT32_MAX; ///< the most bytes that one read returns
    bool seekable = true;             ///< whether it has a position and can seek; a pipe does not
    bool refusesSeek = false;         ///< whether seeking fails although the position is known
    int64_t failsAt = INT64_MAX;      ///< reading beyond this position throws
    int64_t place = 0;                ///< next byte
    int reads = 0;
    int seeks = 0;

    int32_t JRead() override {
        uint8_t byte = 0;
        return JRead(&byte, 0, 1) == 1 ? byte : -1;
    }

    int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count) override {
        ++reads;
        const int64_t left = static_cast<int64_t>(data.size()) - place;
        const int64_t piece = std::min<int64_t>({count, largestPiece, left});
        if (place + piece > failsAt) {
            std::memset(buffer + offset, 'X', static_cast<size_t>(piece));
            throw JIOException("PieceStream failed.");
        }
        std::memcpy(buffer + offset, data.data() + place, static_cast<size_t>(piece));
        place += piece;
        return static_cast<int32_t>(piece);
    }

    void JClose() override {
        data.resize(static_cast<size_t>(std::min<int64_t>(place, std::ssize(data))));
    }
    int64_t JTell() override { return seekable ? place : -1; }

    void JSeek(int64_t position) override {
        ++seeks;
        if (!seekable || refusesSeek || position < 0) {
            throw JIOException("PieceStream cannot seek.");
        }
        place = position;
    }
};
