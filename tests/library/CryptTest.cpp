#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "crypt/Aes.h"
#include "crypt/Des.h"
#include "crypt/Md5.h"

namespace {

std::string hexOf(const uint8_t* bytes, size_t count) {
    std::string text;
    for (size_t at = 0; at < count; ++at) {
        text += "0123456789abcdef"[bytes[at] >> 4];
        text += "0123456789abcdef"[bytes[at] & 15];
    }
    return text;
}

std::vector<uint8_t> bytesOf(const std::string& hex) {
    std::vector<uint8_t> bytes;
    for (size_t at = 0; at < hex.size(); at += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(hex.substr(at, 2), nullptr, 16)));
    return bytes;
}

std::string digest(std::string_view text, size_t step) {
    Md5 md5;
    md5Init(&md5, kMd5Start);
    for (size_t at = 0; at < text.size(); at += step)
        md5Add(&md5, text.data() + at, std::min(step, text.size() - at));
    uint8_t result[kMd5Size];
    md5Finish(&md5, result);
    return hexOf(result, kMd5Size);
}

struct Vector {
    const char *key, *plain, *cipher;
};

}  // namespace

// The test suite of RFC 1321, and lengths around the ends of blocks.
TEST(Crypt, DigestsAreThePublishedOnesHoweverTheTextComes) {
    const std::string alphabet = "abcdefghijklmnopqrstuvwxyz";
    const std::string digits = "1234567890123456789012345678901234567890";
    const std::pair<std::string, const char*> cases[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {alphabet, "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZ" + alphabet + "0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {digits + digits, "57edf4a22be3c955ac49da2e2107b67a"},
        {std::string(55, 'q'), "c932e1b1a97de537d13e0dddd96da42b"},
        {std::string(56, 'q'), "266ea7b18061f04ebe140d63ce648567"},
        {std::string(64, 'q'), "40bfc24c764552cb38083a62855664aa"},
        {std::string(1000, 'q'), "eeff376d3cdf0eed91c5ffbd964dfc6d"},
    };
    for (const auto& [text, wanted] : cases)
        for (const size_t step : {1, 63, 64, 65, 1000})
            EXPECT_EQ(wanted, digest(text, step)) << text << " by " << step;
}

TEST(Crypt, EncipheredBlocksAreThePublishedOnes) {
    const Vector des[] = {
        {"133457799bbcdff1", "0123456789abcdef", "85e813540f0ab405"},
        {"0e329232ea6d0d73", "8787878787878787", "0000000000000000"},
        {"0101010101010101", "95f8a5e5dd31d900", "8000000000000000"},
        {"8001010101010101", "0000000000000000", "95a8d72813daa94d"},
        {"7ca110454a1a6e57", "01a1d6d039776742", "690f5b0d9a26939b"},
        {"1c587f1c13924fef", "305532286d6f295a", "63fac0d034d9f793"},
    };
    for (const auto& [key, plain, cipher] : des) {
        std::vector<uint8_t> block = bytesOf(plain);
        DesKey prepared;
        desPrepare(&prepared, bytesOf(key).data());
        desEncrypt(&prepared, block.data());
        EXPECT_EQ(cipher, hexOf(block.data(), block.size())) << key;
    }
    const Vector aes[] = {
        {"000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f",
         "00112233445566778899aabbccddeeff", "8ea2b7ca516745bfeafc49904b496089"},
        {"603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4",
         "6bc1bee22e409f96e93d7e117393172a", "f3eed1bdb5d2a03c064b5a7e3db181f8"},
        {"603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4",
         "f69f2445df4f9b17ad2b417be66c3710", "23304b7a39f9f3ff067d8d8f9e24ecc7"},
    };
    for (const auto& [key, plain, cipher] : aes) {
        std::vector<uint8_t> block = bytesOf(plain);
        AesKey prepared;
        aesPrepare(&prepared, bytesOf(key).data());
        aesEncrypt(&prepared, block.data());
        EXPECT_EQ(cipher, hexOf(block.data(), block.size())) << key;
    }
}
