// What the package does on this computer, without a selected printer.
using System;

namespace Kestrel
{
    /// <summary>The interface's version, the status monitor's display and the installation of printers. Members
    /// fail as the functions of the C interface of their names.</summary>
    public static class Host
    {
        /// <summary>The version of the interface.</summary>
        public static uint SdkVersion
        {
            get { return Native.GetSDKVersion(); }
        }

        /// <summary>Whether the status monitor's window is always shown to the current user.</summary>
        public static bool IsStatusMonitorAlwaysShown
        {
            get { return Native.GetStatusMonitorDisplayMode(); }
            set { Call(() => Native.SetStatusMonitorDisplayMode(value ? 1 : 0)); }
        }

        /// <summary>Makes a port of the Standard TCP/IP port monitor and returns its name.</summary>
        public static string AddNetPort(string host, uint port = 9100, string name = "")
        {
            const int capacity = 64;
            char[] portName = new char[capacity];
            Printer.Checked(name, capacity - 1).CopyTo(0, portName, 0, name.Length);
            Call(() => Native.AddNetPort(Printer.Checked(host, int.MaxValue), port, portName));
            return Printer.TextOf(portName);
        }

        /// <summary>Makes a printer with a driver of a setup information file. No text may hold double
        /// quotes.</summary>
        public static void AddDriverInstance(string printerName, string infPath, string model, string port,
                                             bool makeDefault = false)
        {
            foreach (string text in new[] { printerName, infPath, model, port }) Printer.Checked(text, int.MaxValue);
            Call(() => Native.AddDriverInstance(printerName, infPath, model, port, makeDefault));
        }

        /// <summary>Installs the driver of a model, without a printer.</summary>
        public static void AddDriverFiles(string infPath, string model)
        {
            foreach (string text in new[] { infPath, model }) Printer.Checked(text, int.MaxValue);
            Call(() => Native.AddDriverFiles(infPath, model));
        }

        private static void Call(Func<bool> call)
        {
            if (!call()) throw LastCall.Failure();
        }
    }
}
