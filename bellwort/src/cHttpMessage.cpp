#include "cHttpMessage.h"

#include <ctime>
#include <random>
#include <vector>

#include "zBase64.h"
#include "zMD5.h"
#include "zRecord.h"
#include "zSHA1.h"

namespace {

std::string base64(const char* bytes, size_t size) {
    std::vector<char> text(static_cast<size_t>(Base64encode_len(static_cast<int>(size))));
    Base64encode(text.data(), bytes, static_cast<int>(size));
    return text.data();
}

std::string utc_time() {
    const time_t now = time(nullptr);
    tm parts = {};
    gmtime_r(&now, &parts);
    constexpr int kFirstYear = 1900;
    zString text;
    return text.sprintf("%04d-%02d-%02dT%02d:%02d:%02dZ", parts.tm_year + kFirstYear, parts.tm_mon + 1,
                        parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

/// 32 hexadecimal digits that nobody has used before.
zString fresh_nonce() {
    zString seed;
    seed.sprintf("%ld%ld", static_cast<long>(std::random_device()()), static_cast<long>(time(nullptr)));
    zString digits;
    zMD5String(digits, seed);
    return digits;
}

/// Deliberate: over the text of the nonce, not over the bytes that its digits stand for; servers compute the
/// same.
std::string password_digest(const std::string& nonce, const std::string& created, const char* password) {
    const std::string text = nonce + created + password;
    SHA1Context context;
    unsigned char digest[20];
    SHA1Reset(&context);
    SHA1Input(&context, reinterpret_cast<const unsigned char*>(text.data()),
              static_cast<unsigned int>(text.size()));
    SHA1Result(&context, digest);
    return base64(reinterpret_cast<const char*>(digest), sizeof digest);
}

bool is_one_line(const std::string& text) {
    return text.find_first_of("\r\n") == std::string::npos;
}

} // namespace

void cHttpMessage::AddWSSEProof(const char* user, const char* password) {
    if (!is_one_line(user)) // It could forge fields, as in SetFields.
        return;
    const std::string nonce = static_cast<const char*>(fresh_nonce());
    const std::string created = utc_time();
    proof["Authorization"] = "WSSE profile=\"UsernameToken\"";
    proof["X-WSSE"] = std::string("UsernameToken Username=\"") + user + "\", PasswordDigest=\"" +
                      password_digest(nonce, created, password) + "\", Nonce=\"" +
                      base64(nonce.data(), nonce.size()) + "\", Created=\"" + created + "\"";
    proof["Accept"] = "text/xml";
}

void cHttpMessage::SetBasicProof(const char* user, const char* password) {
    const std::string pair = std::string(user) + ":" + password;
    fields["Authorization"] = "Basic " + base64(pair.data(), pair.size());
}

void cHttpMessage::SetFields(const zRecord& headers) {
    for (unsigned int i = 0; i < headers.VariableCount(); ++i) {
        const char* known = headers.VariableName(i); // Null for an id that was never given a name.
        const std::string name = known ? known : "";
        char room[64];
        const std::string value = headers.AsCString(headers.VariableID(i), "", &room);
        if (!name.empty() && is_one_line(name) && is_one_line(value) && name.find(':') == std::string::npos)
            fields[name] = value;
    }
    fields.erase("Content-Length");
    fields.erase("Transfer-Encoding");
}
