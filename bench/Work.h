/// @file
/// What a host does, at what size, and who does it.
#pragma once

#include "Client.h"
#include "Measurement.h"

namespace Bench
{
constexpr std::size_t kB = 1000;
constexpr std::size_t MB = 1000 * kB;

enum class Operation
{
    Note,
    SecureNote,
    List,
    Upload,
    AsynchronousUpload
};

const char* nameOf(Operation operation);

/// One thing that a host does, at one size: characters of a note, tickets of a list, bytes of a file.
struct Work
{
    Operation operation;
    std::size_t size;
    int rounds;
    double goal; ///< a part of what the bare SDK needs; 0: none
    bool quick;  ///< also where only a first impression is wanted
    /// A part of what the C++ functions need; 0: none.
    double goalOfTheCInterface = 0;
};

std::string sizeOf(const Work& work);

/// The records that a host passes to an operation.
struct Material
{
    explicit Material(const Work& work);

    TechNote note;
    Attachment file;
    std::size_t tickets;
};

struct NamedClient
{
    std::string name;
    std::unique_ptr<Client> client;
};

/// The library, the bare SDK, the library through its C interface, and the peers of the target, ready to
/// work. A window does not wait for the C interface.
std::vector<NamedClient> allClients(Operation operation);

/// `named` and `material` must outlive it.
Contender contender(const NamedClient& named, Operation operation, const Material& material);
} // namespace Bench
