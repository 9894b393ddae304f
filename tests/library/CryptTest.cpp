#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "crypt/Aes.h"
#include "crypt/Des.h"
#include "crypt/Md5.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes bytesOf(const std::string& hex) {
    Bytes bytes;
    for (size_t at = 0; at < hex.size(); at += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoi(hex.substr(at, 2), nullptr, 16)));
    return bytes;
}

template <typename Key>
Bytes enciphered(const char* key, const char* plain, void (*prepare)(Key*, const uint8_t*),
                 void (*encrypt)(const Key*, uint8_t*)) {
    Key prepared;
    prepare(&prepared, bytesOf(key).data());
    Bytes block = bytesOf(plain);
    encrypt(&prepared, block.data());
    return block;
}

}  // namespace

// Of the test suite of RFC 1321, and lengths around the ends of blocks.
TEST(Crypt, DigestsAreThePublishedOnesHoweverTheTextComes) {
    const std::string digits = "1234567890123456789012345678901234567890";
    const std::pair<std::string, const char*> cases[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {digits + digits, "57edf4a22be3c955ac49da2e2107b67a"},
        {std::string(55, 'q'), "c932e1b1a97de537d13e0dddd96da42b"},
        {std::string(64, 'q'), "40bfc24c764552cb38083a62855664aa"},
        {std::string(1000, 'q'), "eeff376d3cdf0eed91c5ffbd964dfc6d"}};
    for (const auto& [text, wanted] : cases) {
        for (const size_t step : {1, 63, 64, 65, 1000}) {
            Md5 md5;
            md5Init(&md5, kMd5Start);
            for (size_t at = 0; at < text.size(); at += step)
                md5Add(&md5, text.data() + at, std::min(step, text.size() - at));
            uint8_t digest[kMd5Size];
            md5Finish(&md5, digest);
            EXPECT_EQ(bytesOf(wanted), Bytes(digest, digest + kMd5Size)) << text << " by " << step;
        }
    }
}

TEST(Crypt, EncipheredBlocksAreThePublishedOnes) {
    constexpr const char* kDes[][3] = {
        {"133457799bbcdff1", "0123456789abcdef", "85e813540f0ab405"},
        {"0101010101010101", "95f8a5e5dd31d900", "8000000000000000"},
        {"8001010101010101", "0000000000000000", "95a8d72813daa94d"},
        {"7ca110454a1a6e57", "01a1d6d039776742", "690f5b0d9a26939b"},
        {"1c587f1c13924fef", "305532286d6f295a", "63fac0d034d9f793"}};
    for (const auto& [key, plain, cipher] : kDes)
        EXPECT_EQ(bytesOf(cipher), enciphered(key, plain, desPrepare, desEncrypt)) << key;
    EXPECT_EQ(bytesOf("8ea2b7ca516745bfeafc49904b496089"),
              enciphered("000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f",
                         "00112233445566778899aabbccddeeff", aesPrepare, aesEncrypt));
}
