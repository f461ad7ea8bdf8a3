/// @file
/// The few Windows types that the library's interface uses, for hosts on Linux.
#pragma once

#include <cstdint>
#include <functional>

#define VANTRY_API __attribute__((visibility("default")))

using BYTE = std::uint8_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;

/// A window: an object of the host, which owns it. `post` is called on the thread that posts the message.
struct HWND__
{
    std::function<void(UINT message, WPARAM wParam, LPARAM lParam)> post;
};
using HWND = HWND__*;

constexpr DWORD X509_ASN_ENCODING = 1;

/// A certificate: `cbCertEncoded` bytes of DER at `pbCertEncoded`. The last two members are null on Linux.
struct CERT_CONTEXT
{
    DWORD dwCertEncodingType;
    BYTE* pbCertEncoded;
    DWORD cbCertEncoded;
    struct CERT_INFO* pCertInfo;
    void* hCertStore;
};
using PCCERT_CONTEXT = const CERT_CONTEXT*;
