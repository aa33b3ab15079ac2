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

/// Writes a block of a download: the callback that FTPFileFromVORN passes to libcurl.
///
/// `context` points to a std::pair<std::string, std::FILE*>: the local file's name, and its stream,
/// which is null before the first block and is opened by the first call. Returns the number of
/// elements written, or 4294967295, which libcurl treats as an error, if the file cannot be opened
/// or the context is null.
QDXCORE_EXPORT std::size_t curl_fwrite(const void* data, std::size_t size, std::size_t count,
                                       void* context) noexcept;

/// Returns the "/dev/sd" block device of a SCSI generic device, for example "/dev/sdb" for
/// "/dev/sg1". Logs and throws kQDXStatusFileSystemError if the device cannot be opened or queried,
/// or none of the first 128 block devices has its address.
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
  // ".nsc.so") are in the install root; NAME is the service name. Libraries are never unloaded. An
  // exception from a library's static initialiser ends the process.

  /// The install root: the directory that holds this library, without a separator at the end; "."
  /// if the loader knows the library by a bare file name.
  /// Throws kQDXStatusFileSystemError if the loader cannot tell.
  static std::string GetQDXRootPath();
  /// The service names of the libraries of a kind, "nsp" or "nsc", in the install root.
  ///
  /// A file name matches if it contains "." + kind anywhere. The service name is the file name
  /// without its first three and last seven characters, so that "libfoo.nsp.so.old" gives
  /// "foo.nsp"; of a name with fewer than ten characters, everything after the third remains.
  /// Throws kQDXStatusFileSystemError if the root cannot be read, and std::out_of_range for a
  /// matching name of fewer than three characters.
  static std::vector<std::string> FindNSServices(std::string kind);
  static std::vector<std::string> FindNSPs();
  static std::vector<std::string> FindNSCs();
  /// Loads a provider library, which registers its providers. A failure is logged and throws
  /// kQDXStatusFileSystemError.
  static void LoadNSPLibrary(std::string serviceName);
  /// Loads a consumer library, calls its "NAME_CreateINamespaceConsumer" and returns the result,
  /// which may be null; the caller owns it. Logs and throws kQDXStatusFileSystemError if the
  /// library cannot be loaded, and kQDXStatusNotFound if it lacks that function.
  static INamespaceConsumer* LoadNSCLibrary(std::string serviceName);

  /// The generic plug-ins of a kind, as paths: files one level below the directory whose name has
  /// "." + kind + ".so" anywhere.
  ///
  /// The type of a subdirectory is looked up by its bare name, so it is only searched if the name
  /// is also a directory below the current directory. Throws kQDXStatusFileSystemError if a
  /// directory cannot be read.
  static std::vector<std::string> FindPlugins(std::string directory);
  static std::vector<std::string> FindPlugins(std::string directory, std::string kind);
  /// The loader's handle, never null. A path without a separator is one in the current directory. A
  /// failure is logged and throws kQDXStatusFileSystemError.
  static void* LoadPluginLibrary(std::string path);
  /// The specification file of a plug-in file: without its suffix and, but for kind "cmpi", without
  /// the first "lib" of the whole path, wherever that is.
  /// Throws kQDXStatusFail if suffix or "lib" are missing. Does not check whether the file exists.
  static std::string BuildSpecificationPath(std::string pluginPath);
  static std::string BuildSpecificationPath(std::string pluginPath, std::string kind);

  // Files and directories. No path is normalised; links are followed.

  /// Returns whether anything but a directory exists at the path: devices, pipes and sockets count.
  static bool FileExists(std::string path);
  static bool DirExists(std::string path);
  /// In bytes. Throws kQDXStatusFileNotFound unless FileExists.
  static std::uint64_t GetFileSize(std::string path);
  /// Creates one directory with mode 0777 less the file-creation mask; its parent must exist.
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
  /// If the system writes only part of a block, the rest of it is lost without an exception:
  /// compare GetFileSize if that matters. A source without a status, for example a missing one,
  /// does not fail: the copy runs from descriptor 0 to descriptor 0, which is closed at the end.
  /// Call FileExists first.
  static void FileCopy(std::string source, std::string destination);
  /// Copies all files of a directory with FileCopy, and with `recursive` those of its directories.
  ///
  /// Creates no directory: the destination's must exist. Entries whose status cannot be read are
  /// skipped. The first failure ends it with kQDXStatusFileSystemError; what was copied stays.
  static void DirCopy(std::string source, std::string destination, bool recursive);
  /// Throws kQDXStatusFail on systems that have no path limit with the number 4096, such as Linux,
  /// and if the directory does not exist any more.
  static std::string GetCurrentDir();
  /// Returns all bytes up to the end of an open descriptor, which stays open; logged at kLogDebug.
  /// Logs and throws kQDXStatusFileSystemError if a read fails, also if a signal interrupts it.
  static std::string GetFileContents(std::int32_t descriptor);
  /// `path` below `base`, unless base is empty or path begins with "/".
  static std::string RelocateRelativePath(std::string base, std::string path);

  // Child processes and the terminal.

  /// Runs a program, found in PATH, until it has ended and all processes that it started have
  /// closed its output. Returns what was printed to standard output and standard error, in the
  /// order written; standard input is closed.
  ///
  /// A program that cannot be started does not throw: the output is empty and the exit status 1.
  /// Logs an error and throws kQDXStatusFail if no process can be created, its exit status is not
  /// available, for example because SIGCHLD is ignored, or a signal ended it. Also throws what
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
  /// Returns whether a key, an error or the end of the input is waiting on the terminal of standard
  /// input. Never waits. Does not see keys that an earlier GetKeyboardChar has buffered.
  static bool IsKeyWaiting();
  /// Waits for a key, without echo; keys that interrupt or suspend are returned as characters, too.
  /// Returns EOF (-1) at the end of the input.
  static std::int32_t GetKeyboardChar();

  // Anonymous FTP transfers with two servers that are set when the library is built. Each transfer
  // loads "libcurl.so"; a link with this name in the library's folder points to the installed file.
  // Nothing else in the process may use libcurl at the same time. There is no time limit: if a
  // server stops in the middle of a file, the call does not return.
  //
  // Failures are logged. kQDXStatusConnectionFailed means that the server is unknown or does not
  // respond, kQDXStatusLibCurlFailure any other failure of the transfer or of libcurl. After a
  // failure libcurl stays loaded, its handle and files stay open, and a local file stays
  // incomplete.

  /// Downloads a file. The path becomes part of the URL unchanged. The local file is created or
  /// truncated when the first block arrives: an empty remote file does not change it.
  static void FTPFileFromVORN(std::string localFile, std::string remotePath);
  /// Uploads a file, a compressed XML document, as "NAME.xml.gz" to the upload folder. The name
  /// becomes part of the URL unchanged. Throws kQDXStatusFileSystemError if the file cannot be
  /// opened.
  static void FTPFile(std::string localFile, std::string remoteName);

  // Removable media. Device and mount point become part of a shell command without quotes, often as
  // root: pass trusted names only, never unchecked text from a device or a file.

  /// Device and description, as "/dev/sdb" and "VENDOR - PRODUCT".
  using TRemovableMedia = std::vector<std::pair<std::string, std::string>>;

  /// Returns the USB storage among the instances of VORNSG_SCSIDevice in the namespace, and the
  /// first floppy that can be mounted, which stays mounted. Creates /mnt/floppy for it; anything
  /// that is already mounted there is listed as /dev/floppy.
  ///
  /// A direct access device counts as USB storage if the first word of its ProductID occurs in
  /// /proc/bus/usb/devices, so one without any always does. Throws what CaptureFile throws for that
  /// file, which current kernels do not have, what the namespace throws, what MapSG2SD throws, and
  /// kQDXStatusValueIsNULL if a device lacks a required value: one such device ends the operation.
  static TRemovableMedia EnumerateRemovableMedia(boost::shared_ptr<ICIMNamespace> ns);
  /// Mounts the device, or its first partition, and returns the mount point: "/mnt/floppy" for
  /// /dev/floppy, /dev/fd0 and /dev/fd1, else "/mnt/key". It must exist; if anything is mounted
  /// there already, nothing else is. Throws kQDXStatusFileSystemError.
  static std::string MountDevice(std::string device);
  /// Ignores the device. Throws kQDXStatusFileSystemError.
  static void UnmountDevice(std::string device, std::string mountPoint);

  // Clock and names.

  /// Takes milliseconds, despite the name; they are converted to microseconds modulo 2^32.
  static void USleep(std::uint32_t milliseconds);
  /// Returns the current time, to the millisecond, with the current offset. Null during the time,
  /// about an hour, that the host's zone skips and TCIMDateTime rejects. Notices a changed TZ at
  /// once, and a replaced /etc/localtime within a second.
  static TCIMDateTime GetLocalTime();
  /// The host name. Throws kQDXStatusFail if it cannot be read or has 64 characters or more.
  static std::string GetMachineName();
  /// Returns the host name, too.
  static std::string GetOperatingSystemName();
  /// Receives the logger's lines while no log file is set. Does nothing on this platform.
  static void OutputLogString(std::string line);
  /// Returns both unchanged, since the shell has expanded wildcards already.
  static void ExpandCommandLineWildcards(std::int32_t count, char** arguments,
                                         std::int32_t& expandedCount, char**& expandedArguments);
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_OS_SPECIFIC_H_
