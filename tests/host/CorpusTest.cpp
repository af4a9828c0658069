// The files of tests/corpus were written on 64-bit Linux. Every build on every system reads them,
// writes them again without a changed byte, and makes the same files from the same values.
//
// With KEL_CORPUS_WRITE in the environment the test rewrites the files instead. Use it only after a
// change of a format or of the documents (see tests/corpus/README.md).
#include "CorpusDocuments.h"
#include "StreamSupport.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

using namespace host;

namespace {

std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::filesystem::path corpusFile(const std::string& name) {
    return std::filesystem::path(KEL_CORPUS) / name;
}

bool isToBeWritten() {
    return std::getenv("KEL_CORPUS_WRITE") != nullptr;
}

void writeText(KEL* value, const char* name) {
    hold(CreateKELTextOutputStream(name, false))->write(value);
}

void writeBinary(KEL* value, const char* name) {
    hold(CreateKELBinaryOutputStream(name))->write(value);
}

class Corpus : public testing::TestWithParam<CorpusDocument> {
protected:
    const Held<KEL> value_ = GetParam().make();
    const File written_;
};

class CorpusText : public Corpus {
protected:
    const std::string file_ = corpusFile(GetParam().name + std::string(".kel")).string();
};

class CorpusBinary : public Corpus {
protected:
    const std::string file_ = corpusFile(GetParam().name + std::string(".kelb")).string();
};

TEST_P(CorpusText, IsWhatIsWrittenHere) {
    if (isToBeWritten()) {
        writeText(value_.get(), file_.c_str());
    }
    writeText(value_.get(), written_.name());
    EXPECT_EQ(written_.bytes(), bytesOf(file_));
}

TEST_P(CorpusText, IsReadAndWrittenAgainWithoutAChangedByte) {
    const auto read = hold(hold(CreateKELTextInputStream(file_.c_str()))->read());
    writeText(read.get(), written_.name());
    EXPECT_EQ(written_.bytes(), bytesOf(file_));
}

TEST_P(CorpusBinary, IsWhatIsWrittenHere) {
    if (isToBeWritten()) {
        writeBinary(value_.get(), file_.c_str());
    }
    writeBinary(value_.get(), written_.name());
    EXPECT_EQ(written_.bytes(), bytesOf(file_));
}

TEST_P(CorpusBinary, IsReadAndWrittenAgainWithoutAChangedByte) {
    const auto read = hold(hold(CreateKELBinaryInputStream(file_.c_str()))->read());
    EXPECT_TRUE(read->equalsValue(value_.get()));
    writeBinary(read.get(), written_.name());
    EXPECT_EQ(written_.bytes(), bytesOf(file_));
}

std::vector<CorpusDocument> documentsWith(bool CorpusDocument::*form) {
    std::vector<CorpusDocument> documents = corpusDocuments();
    std::erase_if(documents, [form](const auto& document) { return !(document.*form); });
    return documents;
}

constexpr auto nameOf = [](const auto& document) { return std::string(document.param.name); };

INSTANTIATE_TEST_SUITE_P(Documents, CorpusText,
                         testing::ValuesIn(documentsWith(&CorpusDocument::hasText)), nameOf);
INSTANTIATE_TEST_SUITE_P(Documents, CorpusBinary,
                         testing::ValuesIn(documentsWith(&CorpusDocument::hasBinary)), nameOf);

TEST(CorpusFiles, AreThoseOfTheDocumentsAndNoMore) {
    std::vector<std::string> expected = {"README.md"};
    for (const CorpusDocument& document : corpusDocuments()) {
        if (document.hasText) {
            expected.push_back(document.name + std::string(".kel"));
        }
        if (document.hasBinary) {
            expected.push_back(document.name + std::string(".kelb"));
        }
    }
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(corpusFile(""))) {
        found.push_back(entry.path().filename().string());
    }
    std::sort(expected.begin(), expected.end());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected);
}

} // namespace
