// SPDX-License-Identifier: ISC
#include "gl/bitmap.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace brindle {
namespace {

/// A folder of its own for each test.
struct BitmapFile : ::testing::Test {
    std::filesystem::path folder = std::filesystem::temp_directory_path() / "brindle-XXXXXX";
    std::string path;
    Bitmap image;

    BitmapFile() {
        std::string name = folder.string();
        folder = mkdtemp(name.data());
        path = folder / "picture";
    }
    ~BitmapFile() override { std::filesystem::remove_all(folder); }

    /// The message that reading the file prints; reading must fail.
    std::string Refusal() {
        ::testing::internal::CaptureStdout();
        EXPECT_FALSE(LoadBitmap(path.c_str(), image));
        EXPECT_TRUE(image.pixels.empty());
        return ::testing::internal::GetCapturedStdout();
    }
    void Write(const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }
};

/// A picture of 3 x 2 pixels whose bytes count up from 0, after a gap of 6 bytes.
std::string GoodFile() {
    std::string bytes = {"BM"};
    bytes.append(8, '\xee');  // size and reserved words are not read
    bytes += {60, 0, 0, 0, '\xee', '\xee', '\xee', '\xee', 3, 0, 0, 0, 2, 0, 0, 0, 1, 0, 32, 0};
    bytes.resize(60, '\xee');
    for (char value = 0; value < 24; ++value) bytes += value;
    return bytes;
}

std::string Changed(size_t offset, const std::string& bytes) {
    return GoodFile().replace(offset, bytes.size(), bytes);
}

TEST_F(BitmapFile, RowsAreReadAsTheyStand) {
    Write(GoodFile());
    ASSERT_TRUE(LoadBitmap(path.c_str(), image));
    EXPECT_EQ(image.width, 3);
    EXPECT_EQ(image.height, 2);
    ASSERT_EQ(image.pixels.size(), 24u);
    EXPECT_EQ(image.pixels[0], 0);
    EXPECT_EQ(image.pixels[23], 23);
}

TEST_F(BitmapFile, DamagedFilesAreRefusedWithTheirReason) {
    const std::string loading = "Error loading file!\n";
    const std::string reading = "Error reading file!\n";
    const std::string kMost(4, '\xff');
    struct Case {
        const char* what;
        std::string bytes;
        std::string said;
    };
    const Case cases[] = {
        {"empty", "", reading},
        {"one byte", "B", reading},
        {"other signature", Changed(0, "PM"), "Not a Bitmap-File!\n"},
        {"ends before the offset", GoodFile().substr(0, 12), reading},
        {"ends before the width", GoodFile().substr(0, 18), reading},
        {"ends before the depth", GoodFile().substr(0, 28), reading},
        {"two planes", Changed(26, "\x02"), "Error: number of Planes not 1!\n"},
        {"24 bits", Changed(28, "\x18"), "Bits per Pixel not 32\n"},
        {"no pixels", GoodFile().substr(0, 60), loading},
        {"a byte short", GoodFile().substr(0, 83), loading},
        {"offset past the end", Changed(10, std::string("\0\1\0\0", 4)), loading},
        {"largest offset", Changed(10, kMost), loading},
        {"width 0", Changed(18, std::string(4, '\0')), loading},
        {"height 0", Changed(22, std::string(4, '\0')), loading},
        {"width -1", Changed(18, kMost), loading},
        {"height -1", Changed(22, kMost), loading},
        {"both -1, whose product is 1", Changed(18, kMost + kMost), loading},
        {"65536 x 65536, whose product is 0 in 32 bits",
         Changed(18, std::string("\0\0\1\0\0\0\1\0", 8)), loading},
        {"2049 wide", Changed(18, std::string("\1\x08\0\0", 4)), loading},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        Write(row.bytes);
        EXPECT_EQ(Refusal(), row.said);
    }
}

TEST_F(BitmapFile, AnImmenseFileWithHolesIsRefused) {
    // 30000 x 30000 pixels, complete, in a sparse file.
    Write(Changed(18, std::string("\x30\x75\0\0\x30\x75\0\0", 8)));
    std::filesystem::resize_file(path, 60 + 4ull * 30000 * 30000);
    EXPECT_EQ(Refusal(), "Error loading file!\n");
}

TEST_F(BitmapFile, WhatIsNoRegularFileIsRefusedWithoutWaiting) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(Refusal(), "Error reading file!\n");
    path = folder;
    EXPECT_EQ(Refusal(), "Error reading file!\n");
    path = "/dev/zero";
    EXPECT_EQ(Refusal(), "Error reading file!\n");
}

TEST_F(BitmapFile, MissingFilesAreReportedUnlessExpected) {
    EXPECT_EQ(Refusal(), "File not found : " + path + "\n");
    quietMissingFiles = true;
    EXPECT_EQ(Refusal(), "");
    quietMissingFiles = false;
}

}  // namespace
}  // namespace brindle
