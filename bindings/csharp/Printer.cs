// A selected printer: whose it is, and how its calls pass the C interface.
//
//     using System;
//     using Kestrel;
//
//     static class Program
//     {
//         static void Main()
//         {
//             using (Printer printer = Printer.Select("Office"))
//             {
//                 printer.FaxRedials = 5;
//                 Console.WriteLine(printer.FaxRedials);
//             }
//         }
//     }
//
// A setting is a property, named as its functions of the C interface: FaxRedials for GetFaxRedials and
// SetFaxRedials; what can only be written is a method. Printer.Settings has all of them. Failures are
// KestrelExceptions.
//
// Threads. The library has one selection for each thread, so a Printer is bound to the thread that selected it,
// and a thread has one at a time: each call on another thread fails with ErrorCode.WrongThread, and each call
// after the thread has selected again, or tried to, with ErrorCode.SelectionLost. So do not await between
// Select and the last call, unless the awaiter comes back to the thread. A call takes up to 140 KB of stack.
//
// The library file. "ZRIJ9900SDK" is ZRIJ9900SDK.dll on Windows. On Linux both runtimes look for
// libZRIJ9900SDK.so, which packages for development have. Without them, mono finds the installed library by
// the Kestrel.Sdk.dll.config that lies beside the assembly, and a program on .NET 5 or later names it itself,
// before its first call:
//
//     NativeLibrary.SetDllImportResolver(typeof(Kestrel.Printer).Assembly, (name, assembly, path) =>
//         OperatingSystem.IsLinux() ? NativeLibrary.Load("lib" + name + ".so.1") : IntPtr.Zero);
using System;
using System.Net;
using System.Runtime.InteropServices;
using System.Threading;

namespace Kestrel
{
    /// <summary>The printer that this thread has selected.</summary>
    /// <remarks>Each member fails as the function of the C interface of its name does, and blocks as long;
    /// besides with ErrorCode.WrongThread, SelectionLost, BadText for a text, and with Declined where the C
    /// function leaves 0.</remarks>
    public sealed partial class Printer : IDisposable
    {
        private const uint NoLimit = 0xFFFFFFFF;
        private static long selections;
        [ThreadStatic] private static long currentSelection; // 0 before the first and after one that failed
        [ThreadStatic] private static long lockedSelection;

        private readonly long selection;
        private readonly int thread = Thread.CurrentThread.ManagedThreadId;
        private uint timeoutMs = 5000;
        private bool isDisposed;

        private Printer(long selection)
        {
            this.selection = selection;
        }

        /// <summary>Selects an installed printer for this thread; without a name the last one of the
        /// product.</summary>
        /// <exception cref="KestrelException">ErrorCode.NoProductPrinter when the product has none, or no
        /// configuration; else as SelectPrinter.</exception>
        public static Printer Select(string name = "")
        {
            Checked(name, int.MaxValue);
            LastCall.Forget(); // without configuration SelectPrinter leaves what there was
            currentSelection = 0;
            if (!Native.SelectPrinter(name)) throw LastCall.Failure(ErrorCode.NoProductPrinter);
            currentSelection = Interlocked.Increment(ref selections);
            return new Printer(currentSelection);
        }

        /// <summary>Ends the use of this object, and gives the printer back if this thread holds its lock. The
        /// library keeps the thread's selection.</summary>
        public void Dispose()
        {
            if (lockedSelection == selection) Unlock();
            isDisposed = true;
        }

        /// <summary>The time allowed for each exchange, at first five seconds; below zero waits without limit.
        /// Change it seldom: the first call with another one announces it to the language monitor.</summary>
        public TimeSpan Timeout
        {
            get { return TimeSpan.FromMilliseconds(timeoutMs == NoLimit ? -1.0 : timeoutMs); }
            set
            {
                double milliseconds = value.TotalMilliseconds;
                timeoutMs = milliseconds < 0 || milliseconds >= NoLimit ? NoLimit : (uint)milliseconds;
            }
        }

        /// <summary>Keeps the printer for this thread until what is returned is disposed of.</summary>
        public IDisposable Lock()
        {
            Call(() => Native.Lock(timeoutMs));
            lockedSelection = selection;
            return new LockGuard(this);
        }

        /// <summary>Gives the printer back before the end of its lock, to see whether it worked.</summary>
        public void Unlock()
        {
            if (lockedSelection != selection) throw Misuse();
            lockedSelection = 0;
            if (!Native.Unlock(timeoutMs)) throw LastCall.Failure();
        }

        /// <summary>Cancels what the language monitor is doing for this printer.</summary>
        public void Cancel()
        {
            Call(() => Native.Cancel());
        }

        /// <summary>Whether the language monitor may answer from what it knows.</summary>
        public void EnableCache(bool enable)
        {
            Call(() => Native.EnableCache(enable));
        }

        /// <summary>The printer's status; starts the status monitor if it does not run.</summary>
        public Status GetStatus()
        {
            DeviceStatusRecord record = default(DeviceStatusRecord);
            Call(() => Native.GetStatus(out record, (uint)Marshal.SizeOf(typeof(DeviceStatusRecord))));
            return new Status(record);
        }

        /// <summary>Sends a request of the printer's command language and returns the reply.</summary>
        public byte[] Send(byte[] request)
        {
            const int longestMessage = 65791;
            byte[] reply = new byte[longestMessage];
            uint length = 0;
            Call(() => Native.SendCmd(request, (uint)request.Length, reply, (uint)reply.Length, out length, timeoutMs));
            Array.Resize(ref reply, (int)length);
            return reply;
        }

        /// <summary>The response number of the last reply that was read.</summary>
        public uint LastResponse
        {
            get
            {
                Check();
                return Native.GetLastResponseNum();
            }
        }

        // --- How calls pass ---

        internal delegate bool Getter<T>(out T value, uint timeoutMs);
        internal delegate bool Setter<T>(T value, uint timeoutMs);

        private T Read<T>(Getter<T> getter)
        {
            T value = default(T);
            Call(() => getter(out value, timeoutMs));
            return value;
        }

        private void Write<T>(Setter<T> setter, T value)
        {
            Call(() => setter(value, timeoutMs));
        }

        private string ReadText(Setter<char[]> getter, int capacity)
        {
            char[] text = new char[capacity];
            Call(() => getter(text, timeoutMs));
            return TextOf(text);
        }

        private void WriteText(Setter<string> setter, string value)
        {
            Write(setter, Checked(value, int.MaxValue));
        }

        private IPAddress ReadAddress(Setter<byte[]> getter)
        {
            byte[] address = new byte[4];
            Call(() => getter(address, timeoutMs));
            return new IPAddress(address);
        }

        private void WriteAddress(Setter<uint> setter, IPAddress value)
        {
            Write(setter, NumberOf(value));
        }

        /// The lowest byte goes first.
        private static uint NumberOf(IPAddress address)
        {
            byte[] bytes = address.GetAddressBytes();
            if (bytes.Length != 4) throw new ArgumentException("the printer takes IPv4 addresses alone", "address");
            return bytes[0] | (uint)bytes[1] << 8 | (uint)bytes[2] << 16 | (uint)bytes[3] << 24;
        }

        internal static string TextOf(char[] field)
        {
            int end = Array.IndexOf(field, '\0');
            return new string(field, 0, end < 0 ? field.Length : end);
        }

        /// A zero character or the end of a field would cut the text unseen.
        internal static string Checked(string text, int longest)
        {
            if (text == null) throw new ArgumentNullException("text");
            if (text.Length > longest || text.IndexOf('\0') >= 0) throw new KestrelException(ErrorCode.BadText);
            return text;
        }

        private void Call(Func<bool> call)
        {
            Check();
            if (!call()) throw LastCall.Failure();
        }

        private void Check()
        {
            if (isDisposed) throw new ObjectDisposedException("Printer");
            if (selection != currentSelection) throw Misuse();
        }

        private KestrelException Misuse()
        {
            bool isStranger = thread != Thread.CurrentThread.ManagedThreadId;
            return new KestrelException(isStranger ? ErrorCode.WrongThread : ErrorCode.SelectionLost);
        }

        private sealed class LockGuard : IDisposable
        {
            private readonly Printer printer;

            internal LockGuard(Printer printer)
            {
                this.printer = printer;
            }

            public void Dispose()
            {
                if (lockedSelection == printer.selection) printer.Unlock();
            }
        }
    }

    internal static class LastCall
    {
        // Windows keeps the value where the runtime may change it, which therefore saves it after each call. On
        // Linux it is winport's, which nobody else calls.
        [DllImport("winport", EntryPoint = "GetLastError", CallingConvention = CallingConvention.Cdecl)]
        private static extern uint GetLastErrorOfWinport();
        [DllImport("winport", EntryPoint = "SetLastError", CallingConvention = CallingConvention.Cdecl)]
        private static extern void SetLastErrorOfWinport(uint code);
        [DllImport("kernel32", EntryPoint = "SetLastError")]
        private static extern void SetLastErrorOfWindows(uint code);

        private static bool IsWindows
        {
            get { return Environment.OSVersion.Platform == PlatformID.Win32NT; }
        }

        internal static void Forget()
        {
            if (IsWindows) SetLastErrorOfWindows(0);
            else SetLastErrorOfWinport(0);
        }

        /// `instead`: the code where the function has left 0.
        internal static KestrelException Failure(uint instead = ErrorCode.Declined)
        {
            const uint noReply = 100000, noObject = 100001;
            uint code = IsWindows ? (uint)Marshal.GetLastWin32Error() : GetLastErrorOfWinport();
            char[] reply = new char[1024];
            Native.GetLastBadResponse(reply, (uint)reply.Length);
            uint response = Native.GetLastResponseNum();
            return new KestrelException(code != 0 ? code : instead, Printer.TextOf(reply),
                                        response == noReply || response == noObject ? 0 : response);
        }
    }
}
