// SPDX-License-Identifier: Apache-2.0
/// The services of the operating system.
#ifndef QDXCORE_OS_SPECIFIC_H_
#define QDXCORE_OS_SPECIFIC_H_

#include <qdxcore/config.h>
#include <qdxcore/datetime.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

class ICIMNamespace;
class INamespaceConsumer;

/// Writes a block of a download: what FTPFileFromVORN gives the transfer library to call.
///
/// `context` points to a std::pair<std::string, std::FILE*>: the local file's name, and its stream,
/// which is null before the first block and is then opened here. Returns how many of the `count`
/// elements were written, and 4294967295, an error to the library, if the file cannot be opened or
/// the context is null.
QDXCORE_EXPORT std::size_t curl_fwrite(const void* data, std::size_t size, std::size_t count,
                                       void* context) noexcept;

/// The "/dev/sd" block device of a SCSI generic device, as "/dev/sdb" of "/dev/sg1".
/// Throws kQDXStatusFileSystemError, after a logged line, if the device cannot be asked or none of
/// the first 128 block devices has its address.
QDXCORE_EXPORT std::string MapSG2SD(std::string sgPath);

/// Everything that touches the platform, as static operations. Not synchronised: one thread only.
/// Failures throw TQDXException; directories are listed in the order the system delivers them.
class QDXCORE_EXPORT TOSSpecific {
 public:
  TOSSpecific() = delete;

  /// ".so", the suffix of every loadable module.
  static const std::string kDynamicModuleExtension;
  /// "pi", the kind of generic plug-ins where none is named.
  static const std::string kQDXPluginExtension;
  /// ".pi.so"
  static const std::string kPluginExtension;
  /// ".properties.xml", the suffix of a plug-in's specification file.
  static const std::string kSpecificationExtension;
  /// "/"
  static const std::string kFileSeparator;

  // Plug-ins. Provider libraries ("lib" NAME ".nsp.so") and consumer libraries ("lib" NAME
  // ".nsc.so") stand in the install root; NAME is the service name. What is loaded is never
  // unloaded. A library that throws while its static objects are initialised ends the process.

  /// The install root: the directory that holds this library, without a separator at the end; "."
  /// if the loader knows the library by a bare file name.
  /// Throws kQDXStatusFileSystemError if the loader cannot tell.
  static std::string GetQDXRootPath();
  /// The service names of the libraries of a kind, "nsp" or "nsc", in the install root.
  ///
  /// A name counts that has "." + kind anywhere; the service name is the file name less its first
  /// three characters and its last seven, so that "libfoo.nsp.so.old" gives "foo.nsp"; of fewer
  /// than ten characters all after the third remain. Throws kQDXStatusFileSystemError if the root
  /// cannot be read, and std::out_of_range for a matching name of fewer than three characters.
  static std::vector<std::string> FindNSServices(std::string kind);
  static std::vector<std::string> FindNSPs();
  static std::vector<std::string> FindNSCs();
  /// Loads a provider library, which registers its providers. A failure is logged and throws
  /// kQDXStatusFileSystemError.
  static void LoadNSPLibrary(std::string serviceName);
  /// Loads a consumer library and calls its "NAME_CreateINamespaceConsumer"; the result, null
  /// included, belongs to the caller. A library that cannot be loaded is logged and throws
  /// kQDXStatusFileSystemError, one without that function kQDXStatusNotFound.
  static INamespaceConsumer* LoadNSCLibrary(std::string serviceName);

  /// The generic plug-ins of a kind, as paths: files one level below the directory whose name has
  /// "." + kind + ".so" anywhere.
  ///
  /// The status of a subdirectory is asked for by its bare name, so it is only searched if the name
  /// is a directory below the current directory too.
  /// Throws kQDXStatusFileSystemError if a directory cannot be read.
  static std::vector<std::string> FindPlugins(std::string directory);
  static std::vector<std::string> FindPlugins(std::string directory, std::string kind);
  /// The loader's handle, never null. A path without a separator is one in the current directory. A
  /// failure is logged and throws kQDXStatusFileSystemError.
  static void* LoadPluginLibrary(std::string path);
  /// The specification file of a plug-in file: without its suffix and, but for kind "cmpi", without
  /// the first "lib" of the whole path, wherever that is.
  /// Throws kQDXStatusFail if suffix or "lib" are missing. Whether the file exists is not asked.
  static std::string BuildSpecificationPath(std::string pluginPath);
  static std::string BuildSpecificationPath(std::string pluginPath, std::string kind);

  // Files and directories. No path is normalised; links are followed.

  /// Whether there is something at the path that is no directory: devices, pipes and sockets count.
  static bool FileExists(std::string path);
  static bool DirExists(std::string path);
  /// In bytes. Throws kQDXStatusFileNotFound unless FileExists.
  static std::uint64_t GetFileSize(std::string path);
  /// One directory, open to all that the file-creation mask leaves; its parent must exist.
  /// Throws kQDXStatusDirectoryAlreadyExists, kQDXStatusAccessDenied (also on a read-only file
  /// system) or kQDXStatusFileSystemError.
  static void CreateDir(std::string path);
  /// The names of all entries but "." and "..". Throws kQDXStatusFileSystemError if the directory
  /// cannot be read.
  static std::vector<std::string> ListDir(std::string path);
  /// Copies contents, and the permissions that the file-creation mask leaves, to a new file. Throws
  /// kQDXStatusFileSystemError if a file cannot be opened, the destination exists, or reading or
  /// writing fails; what was written stays then.
  ///
  /// A block of which the system takes only a part is not written again: the copy then lacks the
  /// rest, without an exception. Compare GetFileSize where that matters.
  /// A source whose status cannot be read, a missing one for example, is no failure: the copy runs
  /// from descriptor 0 to descriptor 0, which is closed at the end. Ask FileExists first.
  static void FileCopy(std::string source, std::string destination);
  /// Copies all files of a directory with FileCopy, and with `recursive` those of its directories.
  ///
  /// Creates no directory: the destination's must exist. Entries whose status cannot be read are
  /// skipped. The first failure ends it with kQDXStatusFileSystemError; what was copied stays.
  static void DirCopy(std::string source, std::string destination, bool recursive);
  /// Throws kQDXStatusFail where the host has no limit number 4096 for paths, as Linux has none,
  /// and if the directory is gone.
  static std::string GetCurrentDir();
  /// All bytes up to the end of an open descriptor, which stays open; logged at kLogDebug. A
  /// failure, be it a signal that interrupts the reading, is logged and throws
  /// kQDXStatusFileSystemError.
  static std::string GetFileContents(std::int32_t descriptor);
  /// `path` below `base`, unless base is empty or path begins with "/".
  static std::string RelocateRelativePath(std::string base, std::string path);

  // Child processes and the terminal.

  /// Runs a program, found along the PATH, until it has ended and all that it left running has
  /// closed its output. Returns what was printed to standard output and standard error, in the
  /// order written; standard input is closed.
  ///
  /// A program that cannot be started is no failure: it printed nothing and ended with 1.
  /// Throws kQDXStatusFail, after an error is logged, if the system gives no process, its end
  /// cannot be learnt, for example because SIGCHLD is ignored, or a signal ended it; and what
  /// GetFileContents throws.
  static std::string SpawnProcess(std::string command);
  static std::string SpawnProcess(std::string command, std::vector<std::string> arguments);
  /// Returns the exit code, 0 to 255; `output` takes what was printed.
  static std::int32_t SpawnProcess(std::string command, std::vector<std::string> arguments,
                                   std::string& output);
  /// The contents of a file, whose descriptor stays open. Throws kQDXStatusFileNotFound, after an
  /// error is logged, if it cannot be opened, and what GetFileContents throws.
  static std::string CaptureFile(std::string path);
  /// Runs vi in the foreground. The file name goes unquoted into a shell command: pass trusted
  /// names only.
  static void LaunchTextEditor(std::string file);
  /// Runs sh in the foreground.
  static void LaunchCommandShell();
  /// Whether the real user is root.
  static bool IsAdmin();
  /// Whether GetKeyboardChar would find a key on the terminal of standard input, or an error or the
  /// end of the input; never waits. Keys that a GetKeyboardChar before has buffered are not seen.
  static bool IsKeyWaiting();
  /// Waits for a key, without echo; those that interrupt or suspend arrive as characters too.
  /// Returns EOF (-1) at the end of the input.
  static std::int32_t GetKeyboardChar();

  // FTP transfers, anonymous, with two servers that are a setting of the build. "libcurl.so" is
  // loaded for each one; the link of that name beside this library leads to the file that the host
  // has. Nothing else in the process may use that library meanwhile. No time limit is set: a server
  // that stops sending or receiving in the middle of a file holds the caller for ever.
  //
  // Failures are logged. kQDXStatusConnectionFailed stands for a server that is not known or does
  // not answer, kQDXStatusLibCurlFailure for any other trouble with the transfer or the library.
  // They leave the library loaded, its handle and files open, and a local file as far as it got.

  /// Downloads a file. The path goes into the URL as it is. The local file is created or emptied
  /// when the first block arrives: an empty remote file leaves it as it was.
  static void FTPFileFromVORN(std::string localFile, std::string remotePath);
  /// Uploads a file, a compressed XML document, as "NAME.xml.gz" to the folder for such. The name
  /// goes into the URL as it is. Throws kQDXStatusFileSystemError if the file cannot be opened.
  static void FTPFile(std::string localFile, std::string remoteName);

  // Removable media. Device and mount point go unquoted into a shell command, often as root: pass
  // trusted names only, never what a device or a file says without a check.

  /// Device and description, as "/dev/sdb" and "VENDOR - PRODUCT".
  using TRemovableMedia = std::vector<std::pair<std::string, std::string>>;

  /// The USB storage among the instances of VORNSG_SCSIDevice in the namespace, and the first
  /// floppy that can be mounted, which stays mounted. Creates /mnt/floppy for it; if anything is
  /// mounted there already, that is listed as /dev/floppy.
  ///
  /// A direct access device counts as USB storage if the first word of its ProductID occurs in
  /// /proc/bus/usb/devices, so one without any always does. Throws what CaptureFile throws for that
  /// file, which current kernels do not have, what the namespace throws, what MapSG2SD throws, and
  /// kQDXStatusValueIsNULL if a device lacks a value that is needed: one device ends the list.
  static TRemovableMedia EnumerateRemovableMedia(boost::shared_ptr<ICIMNamespace> ns);
  /// Mounts the device, or its first partition, and returns the mount point: "/mnt/floppy" for
  /// /dev/floppy, /dev/fd0 and /dev/fd1, else "/mnt/key". It must exist; if anything is mounted
  /// there already, nothing else is. Throws kQDXStatusFileSystemError.
  static std::string MountDevice(std::string device);
  /// The device does not matter. Throws kQDXStatusFileSystemError.
  static void UnmountDevice(std::string device, std::string mountPoint);

  // Clock and names.

  /// Milliseconds, despite the name; the microseconds they make are computed modulo 2^32.
  static void USleep(std::uint32_t milliseconds);
  /// A point in time, to the millisecond, with the offset in force; null in the hour or so in which
  /// the host's zone makes TCIMDateTime refuse the present.
  static TCIMDateTime GetLocalTime();
  /// The host name. Throws kQDXStatusFail if it cannot be read or has 64 characters or more.
  static std::string GetMachineName();
  /// The host name too.
  static std::string GetOperatingSystemName();
  /// Does nothing on this platform: where the logger's lines go while no log file is named.
  static void OutputLogString(std::string line);
  /// Hands both on unchanged: the shell has expanded wildcards already.
  static void ExpandCommandLineWildcards(std::int32_t count, char** arguments,
                                         std::int32_t& expandedCount, char**& expandedArguments);
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_OS_SPECIFIC_H_
