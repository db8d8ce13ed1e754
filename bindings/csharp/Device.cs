// What a Printer knows beside its settings.
using System;
using System.Collections.Generic;
using System.Net;

namespace Kestrel
{
    public sealed partial class Printer
    {
        // --- Maintenance: each starts an action of the printer ---

        /// <summary>Calibrates the print head.</summary>
        public void CalibrateHead()
        {
            Call(() => Native.CalibrateHead());
        }

        /// <summary>Prints a test page.</summary>
        public void PrintTestPage()
        {
            Call(() => Native.PrintTestPage());
        }

        /// <summary>Cleans the print head; thoroughly takes more ink.</summary>
        public void CleanHead(bool deep = false)
        {
            Call(() => Native.CleanHead(deep));
        }

        /// <summary>Checks the nozzles.</summary>
        public void CheckNozzle()
        {
            Call(() => Native.CheckNozzle());
        }

        /// <summary>Aligns the print head.</summary>
        public void AlignHead()
        {
            Call(() => Native.AlignHead());
        }

        /// <summary>The printer's action of that name.</summary>
        public void Vtoe()
        {
            Call(() => Native.VTOE());
        }

        // --- Address book ---

        /// <summary>The speed-dial list: 60 entries. It takes 180 requests.</summary>
        public QuickDial[] SpeedDialList
        {
            get { return ReadList(Native.GetQuickDialNumbers, Native.SpeedDialRecords); }
            set { WriteList(Native.SetQuickDialNumbers, value, Native.SpeedDialRecords); }
        }

        /// <summary>The one-touch list: 5 entries.</summary>
        public QuickDial[] OneTouchList
        {
            get { return ReadList(Native.GetQuickDialButtons, Native.OneTouchRecords); }
            set { WriteList(Native.SetQuickDialButtons, value, Native.OneTouchRecords); }
        }

        /// <summary>One entry of the one-touch list, from 0.</summary>
        public QuickDial GetOneTouch(int index)
        {
            KestrelQuickDial record = default(KestrelQuickDial);
            Call(() => Native.GetQuickDialButton((uint)index, out record, timeoutMs));
            return QuickDial.From(record);
        }

        /// <summary>Writes one entry of the one-touch list, from 0.</summary>
        public void SetOneTouch(int index, QuickDial entry)
        {
            KestrelQuickDial record = entry.ToRecord();
            Call(() => Native.SetQuickDialButton((uint)index, ref record, timeoutMs));
        }

        // --- Networks ---

        /// <summary>Starts a search and does not wait for its end.</summary>
        public void StartSearchForAccessPoints()
        {
            Call(() => Native.StartSearchForAccessPoints(timeoutMs));
        }

        /// <summary>How many access points have been found so far.</summary>
        public int AccessPointCount
        {
            get { return (int)Read<uint>(Native.GetNumAccessPoints); }
        }

        /// <summary>The access points found.</summary>
        public IReadOnlyList<AccessPoint> GetAccessPoints()
        {
            KestrelAccessPoint[] records = new KestrelAccessPoint[Native.MaxAccessPoints];
            Call(() => Native.GetAccessPoints(records, timeoutMs));
            List<AccessPoint> points = new List<AccessPoint>();
            // A hidden network has no name; an empty record has no address either.
            foreach (KestrelAccessPoint record in records)
                if (record.ssid != "" || record.macAddress != "") points.Add(new AccessPoint(record));
            return points;
        }

        /// <summary>Lets the printer ping an address; <paramref name="wait"/> is the time for each answer, in the
        /// printer's own unit.</summary>
        public void Ping(IPAddress address, byte count, byte wait)
        {
            uint number = NumberOf(address);
            Call(() => Native.SetPing(number, count, wait, timeoutMs));
        }

        /// <summary>Pings sent since the last Ping.</summary>
        public int PingsSent
        {
            get { return (int)Read<uint>(Native.GetNumOfPingExecuted); }
        }

        /// <summary>Pings answered since the last Ping.</summary>
        public int PingsAnswered
        {
            get { return (int)Read<uint>(Native.GetNumOfPingSuccess); }
        }

        /// <summary>Names of the hosts that the printer discovered by multicast DNS.</summary>
        public IReadOnlyList<string> GetHosts()
        {
            KestrelHost[] records = new KestrelHost[Native.MaxHosts];
            Call(() => Native.GetMDNSHostList(records, timeoutMs));
            List<string> names = new List<string>();
            foreach (KestrelHost record in records)
                if (record.name != "") names.Add(record.name);
            return names;
        }

        // --- Clock ---

        /// <summary>The time that the printer shows, in its own time zone, to the minute. ErrorCode.BadReply when
        /// that is in no calendar.</summary>
        public DateTime Clock
        {
            get
            {
                uint year = 0, month = 0, day = 0, hour = 0, minute = 0;
                Call(() => Native.GetDeviceTime(out year, out month, out day, out hour, out minute, timeoutMs));
                try
                {
                    return checked(new DateTime((int)year, (int)month, (int)day, (int)hour, (int)minute, 0));
                }
                catch (Exception wrong) when (wrong is ArgumentOutOfRangeException || wrong is OverflowException)
                {
                    throw new KestrelException(ErrorCode.BadReply);
                }
            }
            set
            {
                Call(() => Native.SetDeviceTime((ushort)value.Year, (byte)value.Month, (byte)value.Day, (byte)value.Hour,
                                                (byte)value.Minute, timeoutMs));
            }
        }

        /// <summary>The clock as 28 hexadecimal digits, as GetCurrentTimeRTC explains them.</summary>
        public string GetCurrentTimeRtc()
        {
            return ReadText(Native.GetCurrentTimeRTC, 29);
        }

        /// <summary>Sets the clock to that of this computer.</summary>
        public void SetCurrentTimeRtc()
        {
            Call(() => Native.SetCurrentTimeRTC(timeoutMs));
        }

        // --- Firmware, capabilities, identity ---

        /// <summary>The three versions that the printer tells of its firmware.</summary>
        public FirmwareVersions GetFirmwareVersions()
        {
            uint lagoon = 0, customer = 0;
            char[] printer = new char[64];
            Call(() => Native.GetFWVersion(out lagoon, out customer, printer, timeoutMs));
            return new FirmwareVersions { Lagoon = lagoon, Customer = customer, Printer = TextOf(printer) };
        }

        /// <summary>Whether the firmware can be upgraded with UpgradeFirmware.</summary>
        public bool CanUpgradeFirmware
        {
            get { return Read<bool>(Native.GetCapFWUpgrade); }
        }

        /// <summary>Hands an upgrade file to the language monitor, which takes up to a minute.</summary>
        public void UpgradeFirmware(string path)
        {
            Checked(path, int.MaxValue);
            Call(() => Native.UpgradeFW(path));
        }

        /// <summary>Makes the language monitor ask for the firmware's capabilities anew.</summary>
        public void RefreshFirmwareCapabilities()
        {
            Call(() => Native.RefreshFWCapabilities(timeoutMs));
        }

        /// <summary>The first character of the RBN version, as its byte; 0 for an empty one.</summary>
        public byte RbnVersion
        {
            get { return unchecked((byte)Read<uint>(Native.GetCapRBNVer)); }
        }

        /// <summary>Whether the printer can move the top-of-form edge.</summary>
        public bool CanOverrideTofEdge
        {
            get { return Read<bool>(Native.GetCapTOFEdgeOverride); }
        }

        /// <summary>The first bytes of the capability block, at least four, which hold their own number.</summary>
        public byte[] GetCapabilities(int size)
        {
            byte[] buffer = new byte[size];
            Call(() => Native.GetCapabilities(buffer, (uint)size, timeoutMs));
            return buffer;
        }

        /// <summary>The printer's identifiers on the USB.</summary>
        public UsbIds GetUsbIds()
        {
            uint vendor = 0, product = 0;
            Call(() => Native.GetVendorProductIDs(out vendor, out product, timeoutMs));
            return new UsbIds { Vendor = vendor, Product = product };
        }

        /// <summary>Whether the first cloud print service is set up.</summary>
        public bool IsGcpConfigured
        {
            get { return Read<bool>(Native.GetGCPConfigured); }
        }

        /// <summary>Whether the second cloud print service is set up.</summary>
        public bool IsPennantConfigured
        {
            get { return Read<bool>(Native.GetPennantConfigured); }
        }

        // --- The status monitor and supplies ---

        /// <summary>Lets the status monitor, which is started if it does not run, open the status
        /// window.</summary>
        public void ShowStatusMonitor()
        {
            Call(() => Native.ShowStatusMonitor());
        }

        /// <summary>The same with its maintenance window.</summary>
        public void ShowMaintenance()
        {
            Call(() => Native.ShowMaintenance());
        }

        /// <summary>Lets a status monitor that runs open its about box.</summary>
        public void ShowAboutBox()
        {
            Call(() => Native.ShowAboutBox());
        }

        /// <summary>Starts the ordering of supplies.</summary>
        public void OrderSupplies()
        {
            Call(() => Native.OrderSupplies());
        }

        private QuickDial[] ReadList(Setter<KestrelQuickDial[]> getter, int count)
        {
            KestrelQuickDial[] records = new KestrelQuickDial[count];
            Call(() => getter(records, timeoutMs));
            return Array.ConvertAll(records, QuickDial.From);
        }

        private void WriteList(Setter<KestrelQuickDial[]> setter, QuickDial[] list, int count)
        {
            if (list.Length != count) throw new ArgumentException("the list has " + count + " entries", "list");
            Write(setter, Array.ConvertAll(list, entry => entry.ToRecord()));
        }
    }
}
