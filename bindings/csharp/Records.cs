// The records of a Printer.
namespace Kestrel
{
    /// <summary>The printer's status.</summary>
    public sealed class Status
    {
        internal Status(DeviceStatusRecord record)
        {
            State = record.state;
            IsOnUsb = record.onUsb != 0;
            Text = record.text;
        }

        /// <summary>The printer's own number.</summary>
        public uint State { get; }

        /// <summary>Whether it is on a USB port.</summary>
        public bool IsOnUsb { get; }

        /// <summary>In words.</summary>
        public string Text { get; }

        /// <summary>False while nobody has asked the printer yet.</summary>
        public bool IsKnown
        {
            get { return State != 100000 || Text != ""; }
        }
    }

    /// <summary>A destination of the address book.</summary>
    public sealed class QuickDial
    {
        /// <summary>What the address is.</summary>
        public AddressType Type { get; set; }

        /// <summary>At most 39 characters.</summary>
        public string Name { get; set; } = "";

        /// <summary>Fax number or e-mail address, at most 49 characters.</summary>
        public string Address { get; set; } = "";

        internal static QuickDial From(KestrelQuickDial record)
        {
            return new QuickDial { Type = (AddressType)record.addressType, Name = record.name, Address = record.address };
        }

        internal KestrelQuickDial ToRecord()
        {
            return new KestrelQuickDial
            {
                addressType = (uint)Type,
                name = Printer.Checked(Name, 39),
                address = Printer.Checked(Address, 49)
            };
        }
    }

    /// <summary>An access point as the printer sees it; the numbers as the printer reports them.</summary>
    public sealed class AccessPoint
    {
        internal AccessPoint(KestrelAccessPoint record)
        {
            Ssid = record.ssid;
            MacAddress = record.macAddress;
            SignalStrength = record.signalStrength;
            BeaconInterval = record.beaconInterval;
            Capabilities = record.capabilities;
            Channel = record.channel;
            Encryption = record.encryption;
        }

        /// <summary>Empty for a hidden one.</summary>
        public string Ssid { get; }

        /// <summary>00:1B:2C:3D:4E:5F; empty when the printer does not tell it.</summary>
        public string MacAddress { get; }

        /// <summary>Signal strength.</summary>
        public int SignalStrength { get; }

        /// <summary>Beacon interval.</summary>
        public int BeaconInterval { get; }

        /// <summary>Capabilities.</summary>
        public int Capabilities { get; }

        /// <summary>Radio channel.</summary>
        public uint Channel { get; }

        /// <summary>Encryption.</summary>
        public uint Encryption { get; }
    }

    /// <summary>The versions of the firmware: compare them for equality.</summary>
    public struct FirmwareVersions
    {
        /// <summary>The number that the printer calls its Lagoon version.</summary>
        public uint Lagoon { get; internal set; }

        /// <summary>The number of its customer version.</summary>
        public uint Customer { get; internal set; }

        /// <summary>Its printer version.</summary>
        public string Printer { get; internal set; }
    }

    /// <summary>The printer's identifiers on the USB.</summary>
    public struct UsbIds
    {
        /// <summary>The maker's.</summary>
        public uint Vendor { get; internal set; }

        /// <summary>The model's.</summary>
        public uint Product { get; internal set; }
    }
}
