#include "KelTree.h"

#include <cstdlib>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <vector>

namespace bench {

namespace {

/// Builds the tree while the JSON parser reports its events.
class TreeBuilder : public nlohmann::json_sax<nlohmann::json> {
public:
    Tree take() { return std::move(root_); }

    bool null() override {
        if (!open_.empty() && open_.back().fields != nullptr) {
            open_.back().fields->addVar(key_.c_str(), nullptr);
        }
        return true;
    }
    bool boolean(bool value) override { return place(CreateKELBoolean(value)); }
    bool number_integer(number_integer_t value) override {
        if (value < std::numeric_limits<int32_t>::min() ||
            value > std::numeric_limits<int32_t>::max()) {
            return place(CreateKELDouble(static_cast<double>(value)));
        }
        return place(CreateKELInt(static_cast<int32_t>(value)));
    }
    bool number_unsigned(number_unsigned_t value) override {
        if (value > static_cast<number_unsigned_t>(std::numeric_limits<int32_t>::max())) {
            return place(CreateKELDouble(static_cast<double>(value)));
        }
        return place(CreateKELInt(static_cast<int32_t>(value)));
    }
    bool number_float(number_float_t value, const string_t&) override {
        return place(CreateKELDouble(value));
    }
    bool string(string_t& value) override { return place(CreateKELString(value.c_str())); }
    bool binary(binary_t&) override { throw std::runtime_error("JSON holds no binary"); }
    bool start_object(std::size_t) override {
        KEL_Struct* fields = CreateKELStruct();
        place(fields);
        open_.push_back({fields, nullptr});
        return true;
    }
    bool start_array(std::size_t) override {
        KEL_Array* elements = CreateKELArray();
        place(elements);
        open_.push_back({nullptr, elements});
        return true;
    }
    bool key(string_t& name) override {
        key_ = name;
        return true;
    }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& e) override {
        throw std::runtime_error(e.what());
    }

private:
    /// A container that is still being filled; one of the two is null.
    struct Container {
        KEL_Struct* fields;
        KEL_Array* elements;
    };

    /// Puts a new value into the innermost container, which then keeps it alive.
    bool place(KEL* value) {
        Tree owned(value);
        if (open_.empty()) {
            root_ = std::move(owned);
        } else if (open_.back().fields != nullptr) {
            open_.back().fields->addVar(key_.c_str(), value);
        } else {
            open_.back().elements->addVar(value);
        }
        return true;
    }

    bool close() {
        open_.pop_back();
        return true;
    }

    Tree root_;
    std::vector<Container> open_;
    std::string key_;
};

FILE* opened(FILE* file) {
    if (file == nullptr) {
        throw std::runtime_error("cannot open a file in memory");
    }
    return file;
}

/// A FILE that appends to bytes, as nlohmann does when it writes MessagePack. A memory stream of
/// the C library grows in another way and costs more than the measured work.
class MemoryFile {
public:
    explicit MemoryFile(Bytes& bytes)
        : file_(opened(fopencookie(&bytes, "wb", {nullptr, append, nullptr, nullptr}))) {
        std::setvbuf(file_, nullptr, _IONBF, 0); // the library collects what it writes
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { std::fclose(file_); }

    void write(KEL* tree) {
        KELBinaryOutputStream* stream = CreateKELBinaryOutputStream(file_);
        stream->write(tree);
        DeleteKELOutputStream(stream);
        std::fflush(file_);
    }

private:
    static ssize_t append(void* bytes, const char* more, std::size_t count) {
        auto& all = *static_cast<Bytes*>(bytes);
        all.insert(all.end(), more, more + count);
        return static_cast<ssize_t>(count);
    }

    FILE* file_;
};

} // namespace

Tree makeTree(const std::string& json) {
    TreeBuilder builder;
    nlohmann::json::sax_parse(json, &builder);
    return builder.take();
}

Tree readText(const std::string& text) {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) {
        throw std::runtime_error("a string stream takes at most 2 GiB of text");
    }
    KELStringInputStream* stream =
        CreateKELStringInputStream(text.data(), static_cast<int32_t>(text.size()));
    Tree tree(stream->read());
    DeleteKELInputStream(stream);
    return tree;
}

std::size_t writeText(KEL* tree) {
    KELStringOutputStream* stream = CreateKELStringOutputStream();
    stream->write(tree);
    const std::size_t size = stream->getString() == nullptr ? 0 : stream->getStringSize() - 1;
    DeleteKELOutputStream(stream);
    return size;
}

std::string textOf(KEL* tree) {
    KELStringOutputStream* stream = CreateKELStringOutputStream();
    stream->write(tree);
    std::string text = stream->getString();
    DeleteKELOutputStream(stream);
    return text;
}

Tree readBinary(const std::string& bytes) {
    // fmemopen requires a writable buffer in every mode; in mode "r" it only reads.
    FILE* file = opened(fmemopen(const_cast<char*>(bytes.data()), bytes.size(), "rb"));
    KELBinaryInputStream* stream = CreateKELBinaryInputStream(file);
    Tree tree(stream->read());
    DeleteKELInputStream(stream);
    std::fclose(file);
    return tree;
}

std::size_t writeBinary(KEL* tree, Bytes& bytes) {
    bytes.clear();
    MemoryFile(bytes).write(tree);
    return bytes.size();
}

std::string bytesOf(KEL* tree) {
    Bytes bytes;
    writeBinary(tree, bytes);
    return std::string(bytes.begin(), bytes.end());
}

} // namespace bench
