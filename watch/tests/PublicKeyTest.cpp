// Keys as adb writes them.

#include "PublicKey.h"
#include "PairedKeys.h"
#include "WatchTest.h"

#include <fstream>
#include <openssl/ec_key.h>
#include <openssl/nid.h>

namespace {

// A key file of adb 33.0.3 and the modulus of the private key beside it.
constexpr std::string_view ADB_KEY =
    "QAAAAEPU+X6V50V8uQX0lh0LcTrOpsPqUrGOTQtOnT84ZVXDHgSVXmjiNa/efnQr5Bb9zfA6OK4jFlYYTMQSXCxdD+b2xQtxRrNK"
    "zaKcCCG6AOtnE1QWhIF/3ZJRFKXOCFT2zueauOkBbWbj/l6ALqnKySkTb8ohV85I8+BQMxAcWD7pLwU6u8NEnG4Uj0y5VOnrneZ/"
    "HrFcaHTyBFvPH8WyRFsSKxdIDhc9sv17a9TFRI5TmiPWL7flKKE9FD2LRMfu9EkglIq/QFpnvBSanev/f44unH7U9RV9mBOpg4LT"
    "IkyTn01TxVOUCHVbgRop/RqRRNm+0jcgB64lphkimQEZ8/ZGBJqYB9q5dFN+rW0LdIgprVQJb98z1I69Z7Nziyjqc8y/ZBvuQr3g"
    "4mLIvI2e8mHfsJl+wN9eC2YEoFI8bKNWKyq4fI/lw54zMsyknuXI1s2aw6WBjyu5ohpkvw2iHPWyZhZKa7lydMyM/L9lRNACmp46"
    "KYfec4YVdFKweBXs3gLn+AQ2RN29gqaslGPRUVnqC3SgRYGCIcHs99EQXk+kwVZ4DaGGJsxWvS7L4My365I2uAhcDNTLxMwT/UO4"
    "0igm6lTM5fjBxwzAiBarOZtiud3Z0VoZOcN34pciLZffT4d15mM7t/w5+VL1P8X0vfEOBGyhdZm0CSdDxke79ChLE4VQgQEAAQA=";
constexpr std::string_view ADB_MODULUS =
    "989A0446F6F31901992219A625AE072037D2BED944911AFD291A815B75089453C5534D9F934C22D38283A913987D15F5D47E"
    "9C2E8E7FFFEB9D9A14BC675A40BF8A942049F4EEC7448B3D143DA128E5B72FD6239A538E44C5D46B7BFDB23D170E48172B12"
    "5B44B2C51FCF5B04F274685CB11E7FE69DEBE954B94C8F146E9C44C3BB3A052FE93E581C103350E0F348CE5721CA6F1329C9"
    "CAA92E805EFEE3666D01E9B89AE7CEF65408CEA5145192DD7F818416541367EB00BA21089CA2CD4AB346710BC5F6E60F5D2C"
    "5C12C44C18561623AE383AF0CDFD16E42B747EDEAF35E2685E95041EC35565383F9D4E0B4D8EB152EAC3A6CE3A710B1D96F4"
    "05B97C45E795";

std::string Hexadecimal(ByteView bytes)
{
    std::string szText;
    for (const unsigned nByte : bytes) {
        szText += std::format("{:02X}", nByte);
    }
    return szText;
}

SAdbKey KeyNumbered(unsigned n)
{
    SAdbKey key = ParseAdbKey(ADB_KEY).value();
    key.key.modulus[0] = static_cast<std::uint8_t>(n);
    return key;
}

} // namespace

TEST(PublicKey, ReadsWhatAdbWrites)
{
    const std::optional<SAdbKey> key = ParseAdbKey(std::string(ADB_KEY) + " root@VM");
    ASSERT_TRUE(key);
    EXPECT_EQ(Hexadecimal(key->key.modulus), ADB_MODULUS);
    EXPECT_EQ(key->key.nExponent, 65537U);
    EXPECT_EQ(key->szBase64, ADB_KEY);
    EXPECT_EQ(key->szName, "root@VM");
}

TEST(PublicKey, NameMayBeMissingOrHoldBlanks)
{
    EXPECT_EQ(ParseAdbKey(ADB_KEY).value().szName, "");
    EXPECT_EQ(ParseAdbKey(std::string(ADB_KEY) + " two words").value().szName, "two words");
    EXPECT_EQ(ParseAdbKey(std::string(ADB_KEY) + " a\nb").value().szName, "a?b");
}

TEST(PublicKey, RefusesEverythingElse)
{
    const std::string szKey(ADB_KEY);
    std::string szOtherSize = szKey;
    szOtherSize[0] = 'R'; // 0x45 words instead of 0x40
    EXPECT_FALSE(ParseAdbKey(""));
    EXPECT_FALSE(ParseAdbKey(" name"));
    EXPECT_FALSE(ParseAdbKey("not base64!"));
    EXPECT_FALSE(ParseAdbKey(szKey.substr(4)));
    EXPECT_FALSE(ParseAdbKey(szKey.substr(0, szKey.size() - 1)));
    EXPECT_FALSE(ParseAdbKey("AAAA" + szKey));
    EXPECT_FALSE(ParseAdbKey(szOtherSize));
}

TEST(PublicKey, TextAndCertificateOfOneComputerAgree)
{
    const CComputer one("one");
    const CComputer other("other");
    const auto fromCertificate = [](const CComputer& computer) {
        return PublicKeyOf(SSL_CTX_get0_certificate(computer.TlsContext().get()));
    };
    EXPECT_EQ(ParseAdbKey(one.KeyLine()).value().key, fromCertificate(one));
    EXPECT_NE(ParseAdbKey(one.KeyLine()).value().key, fromCertificate(other));
}

TEST(PublicKey, CertificateWithoutRsaKeyHasNone)
{
    const bssl::UniquePtr<EC_KEY> curve(EC_KEY_new_by_curve_name(NID_X9_62_prime256v1));
    const bssl::UniquePtr<EVP_PKEY> key(EVP_PKEY_new());
    const bssl::UniquePtr<X509> certificate(X509_new());
    ASSERT_TRUE(EC_KEY_generate_key(curve.get()) && EVP_PKEY_set1_EC_KEY(key.get(), curve.get()) &&
                X509_set_pubkey(certificate.get(), key.get()));
    EXPECT_FALSE(PublicKeyOf(certificate.get()));
}

TEST(PairedKeys, OldestMakesRoomForTheNewest)
{
    CPairedKeys keys;
    for (unsigned n = 0; n <= CPairedKeys::MOST_KEYS; ++n) {
        keys.Add(KeyNumbered(n));
    }
    EXPECT_FALSE(keys.Contains(KeyNumbered(0).key));
    EXPECT_TRUE(keys.Contains(KeyNumbered(1).key));
    EXPECT_TRUE(keys.Contains(KeyNumbered(CPairedKeys::MOST_KEYS).key));
}

TEST(PairedKeys, PairingAgainDisplacesNobody)
{
    CPairedKeys keys;
    keys.Add(KeyNumbered(0));
    for (unsigned n = 0; n < 2 * CPairedKeys::MOST_KEYS; ++n) {
        keys.Add(KeyNumbered(1));
    }
    EXPECT_TRUE(keys.Contains(KeyNumbered(0).key));
}

using PairedKeysFile = CWatchTest;

TEST_F(PairedKeysFile, HoldsOneKeyPerLine)
{
    const std::filesystem::path file = m_folder / "keys";
    SAdbKey key = ParseAdbKey(ADB_KEY).value();
    key.szName = "root@VM";
    {
        CPairedKeys keys(file);
        keys.Add(key);
    }
    std::ifstream stream(file);
    std::string szLine;
    std::getline(stream, szLine);
    EXPECT_EQ(szLine, std::string(ADB_KEY) + " root@VM");
    EXPECT_EQ(FolderContents(), std::vector<std::string>{"keys"});
    EXPECT_TRUE(CPairedKeys(file).Contains(key.key));
}

TEST_F(PairedKeysFile, WithAnythingElseInItIsRefused)
{
    const std::filesystem::path file = m_folder / "keys";
    std::ofstream(file) << ADB_KEY << "\nsomething else\n";
    EXPECT_THROW(CPairedKeys{file}, std::runtime_error);
    EXPECT_THROW(CPairedKeys{m_folder}, std::runtime_error); // a folder
}
