// SPDX-License-Identifier: ISC
#include "gl/bitmap.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace brindle {
namespace {

struct BitmapFile : ::testing::Test {
    std::string path = ::testing::TempDir() + "brindle-picture-" + std::to_string(getpid());
    Bitmap image;

    ~BitmapFile() override { std::filesystem::remove(path); }

    /// The message that reading a file prints. A file that is refused leaves no picture.
    std::string Said(const std::string& file) {
        ::testing::internal::CaptureStdout();
        const bool loaded = LoadBitmap(file.c_str(), image);
        EXPECT_EQ(image.pixels.empty(), !loaded);
        return ::testing::internal::GetCapturedStdout();
    }
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

TEST_F(BitmapFile, IsReadAsItStandsOrRefusedWithItsReason) {
    const std::string loading = "Error loading file!\n";
    const std::string reading = "Error reading file!\n";
    const std::string most(4, '\xff');
    const std::pair<std::string, std::string> cases[] = {
        {"", reading},
        {Changed(0, "PM"), "Not a Bitmap-File!\n"},
        {GoodFile().substr(0, 12), reading},
        {GoodFile().substr(0, 28), reading},
        {Changed(26, "\x02"), "Error: number of Planes not 1!\n"},
        {Changed(28, "\x18"), "Bits per Pixel not 32\n"},
        {GoodFile().substr(0, 83), loading},
        {Changed(10, most), loading},                       // offset
        {Changed(18, std::string(4, '\0')), loading},       // width
        {Changed(18, most), loading},                       // width -1
        {Changed(22, most), loading},                       // height -1
        {Changed(18, most + most), loading},                // whose product is 1
        {Changed(18, std::string("\1\x08\0\0\1\0\0\0", 8))  // 2049 x 1
             + std::string(4 * 2049, '\0'),
         loading},
        {GoodFile(), ""},
    };
    for (const auto& row : cases) {
        std::ofstream(path, std::ios::binary) << row.first;
        EXPECT_EQ(Said(path), row.second) << "row " << &row - cases;
    }
    EXPECT_EQ(image.width, 3);
    EXPECT_EQ(image.height, 2);
    ASSERT_EQ(image.pixels.size(), 24u);
    EXPECT_EQ(image.pixels[0], 0);
    EXPECT_EQ(image.pixels[23], 23);
}

TEST_F(BitmapFile, WhatIsNoRegularFileIsRefusedWithoutWaiting) {
    EXPECT_EQ(Said(path), "File not found : " + path + "\n");
    quietMissingFiles = true;
    EXPECT_EQ(Said(path), "");
    quietMissingFiles = false;
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    for (const std::string& file : {path, ::testing::TempDir(), std::string("/dev/zero")}) {
        EXPECT_EQ(Said(file), "Error reading file!\n");
    }
}

}  // namespace
}  // namespace brindle
