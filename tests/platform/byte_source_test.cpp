#include "platform/files.h"

#include <gtest/gtest.h>

#include "support/byte_writer.h"
#include "support/temp_folder.h"

namespace facet {
namespace {

/// 200,000 bytes that tell where they stand: the file is longer than the window of a source.
std::string longContent() {
  std::string bytes(200'000, '\0');
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
  return bytes;
}

TEST(ByteSource, ReadsTheSameFromFileAndMemory) {
  const TempFolder folder;
  const std::string content = longContent();
  const auto file = openFile(folder.write("a.bin", content));
  const auto memory = openMemory(asBytes(content));
  ASSERT_TRUE(file);
  for (ByteSource* source : {file.get(), memory.get()}) {
    EXPECT_EQ(source->size(), content.size());
    const std::pair<uint64_t, uint64_t> reads[] = {{0, 8},        {3, 70'000},  {70'003, 5},  {65'530, 20},
                                                   {199'990, 10}, {10, 65'536}, {0, 200'000}, {5, 0}};
    for (const auto& [at, count] : reads) {
      std::string part(count, '?');
      source->seek(at);
      ASSERT_TRUE(source->read(part.data(), count)) << at;
      EXPECT_EQ(part, content.substr(at, count)) << at;
      EXPECT_EQ(source->position(), at + count);
    }
  }
}

TEST(ByteSource, RefusesToReadPastTheEndAndStaysWhereItIs) {
  const std::string content = "123456789";
  const auto source = openMemory(asBytes(content));
  uint64_t eight;
  source->seek(2);
  EXPECT_FALSE(source->read(eight));
  EXPECT_EQ(source->position(), 2u);
  for (const uint64_t position : {uint64_t{9}, uint64_t{1000}, UINT64_MAX}) {
    source->seek(position);
    char c;
    EXPECT_FALSE(source->read(c));
    EXPECT_EQ(source->remaining(), 0u);
    source->skip(UINT64_MAX);
    EXPECT_FALSE(source->read(c));
  }
}

TEST(ByteSource, ReadsTextsAndRecords) {
  const std::string content = std::string("one\0two", 7) + longContent();
  const auto source = openMemory(asBytes(content));
  EXPECT_EQ(source->readText(100), "one");
  EXPECT_EQ(source->readText(6), "tw");  // ends where it must
  EXPECT_EQ(source->position(), 6u);

  source->seek(7);
  std::string records;
  ASSERT_TRUE(source->readRecords(2000, 70, [&](const std::byte* record, uint64_t i) {
    EXPECT_EQ(i, records.size() / 70);
    records.append(reinterpret_cast<const char*>(record), 70);
  }));
  EXPECT_EQ(records, content.substr(7, 140'000));
  EXPECT_FALSE(source->readRecords(UINT64_MAX, 70, [](const std::byte*, uint64_t) {}));
}

TEST(OpenFile, GivesNoneForWhatIsNoFile) {
  const TempFolder folder;
  EXPECT_FALSE(openFile(folder.path()));
  EXPECT_FALSE(openFile(folder / "missing"));
  EXPECT_TRUE(openFile(folder.write("empty", "")));
}

}  // namespace
}  // namespace facet
