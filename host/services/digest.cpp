// SHA-1 of guest data, computed by libcrypto in pieces so that large inputs need no large copy.
#include <kv/abi.h>
#include <openssl/evp.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "memory/protection.h"
#include "services/handlers.h"

namespace kvrun::handlers {

// sha(data, length, digest): 20 bytes into digest; returns the digest's address.
Outcome sha(Process &p, const Request &r) {
  uint32_t data = r.w[0], length = r.w[1], digest = r.w[2];
  if ((length && data == 0) || !p.memory.accessible(data, length, kProtRead) || digest == 0 ||
      !p.memory.accessible(digest, KV_SHA1_DIGEST_LENGTH, kProtWrite))
    return failure(KV_EFAULT);
  std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX *)> ctx(EVP_MD_CTX_new(), EVP_MD_CTX_free);
  if (!ctx || EVP_DigestInit_ex(ctx.get(), EVP_sha1(), nullptr) != 1)
    return failure(KV_ENOMEM);
  constexpr uint32_t kPiece = 64 * 1024;
  std::vector<uint8_t> piece(std::min(length, kPiece));
  for (uint32_t done = 0; done < length;) {
    uint32_t n = std::min(length - done, kPiece);
    if (p.memory.read(data + done, piece.data(), n) != 0)
      return failure(KV_EFAULT);
    EVP_DigestUpdate(ctx.get(), piece.data(), n);
    done += n;
  }
  uint8_t out[EVP_MAX_MD_SIZE];
  unsigned out_len = 0;
  EVP_DigestFinal_ex(ctx.get(), out, &out_len);
  if (p.memory.write(digest, out, KV_SHA1_DIGEST_LENGTH) != 0)
    return failure(KV_EFAULT);
  return success(digest);
}

} // namespace kvrun::handlers
