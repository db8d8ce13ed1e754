// The C# interface against a virtual printer; csharp_test.py compares what `list` prints with the client's.
//   PrinterTest list
//   PrinterTest check
using System;
using System.Globalization;
using System.Net;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;
using Kestrel;

static class PrinterTest
{
    private static int faults;

    private static void Expect<T>(string what, T expected, T found)
    {
        if (Equals(expected, found)) return;
        Console.Error.WriteLine("{0}: {1} instead of {2}", what, found, expected);
        ++faults;
    }

    private static KestrelException Refused(string what, Action call)
    {
        try
        {
            call();
        }
        catch (KestrelException refusal)
        {
            return refusal;
        }
        throw new InvalidOperationException(what + " is not refused");
    }

    private static void ExpectCode(string what, uint code, Action call)
    {
        Expect(what, code, Refused(what, call).Code);
    }

    private static string Shown(object value)
    {
        if (value is bool) return (bool)value ? "True" : "False";
        return value is Enum ? Words.Of((Enum)value) : Convert.ToString(value, CultureInfo.InvariantCulture);
    }

    private static void List(Printer printer)
    {
        foreach (Setting setting in Printer.Settings)
            Console.WriteLine("{0}\t{1}\t{2}", setting.Name, setting.Access,
                setting.Access == Access.ReadWrite || setting.Access == Access.ReadOnly ? Shown(setting.Read(printer)) : "-");
    }

    private static void CheckSizes()
    {
        Expect("status", 1052, Marshal.SizeOf(typeof(DeviceStatusRecord)));
        Expect("quick dial", 184, Marshal.SizeOf(typeof(KestrelQuickDial)));
        Expect("access point", 372, Marshal.SizeOf(typeof(KestrelAccessPoint)));
        Expect("host", 512, Marshal.SizeOf(typeof(KestrelHost)));
        Expect("text of the status", 760, Marshal.OffsetOf(typeof(DeviceStatusRecord), "text").ToInt32());
        Expect("channel of an access point", 108, Marshal.OffsetOf(typeof(KestrelAccessPoint), "channel").ToInt32());
    }

    private static void CheckSettings(Printer printer)
    {
        printer.FaxRedials = 7;
        Expect("a number", 7, printer.FaxRedials);
        printer.SetCopyQuantity(12);
        Expect("a number of two types", 12, printer.CopyQuantity);
        printer.CopyBrightness = -3;
        Expect("a number below 0", -3, printer.CopyBrightness);
        printer.FaxBackup = !printer.FaxBackup;
        printer.PhotoLayout = PhotoLayout("2x2Poster");
        Expect("a word", Layout._2x2Poster, printer.PhotoLayout);
        printer.FriendlyName = "B\u00FCro; 2=3";
        Expect("a text", "B\u00FCro; 2=3", printer.FriendlyName);
        printer.SetWirelessSecurityKey(3, "secret");
        Expect("one of several texts", "secret", printer.GetWirelessSecurityKey(3));
        printer.StaticIPAddress = IPAddress.Parse("192.168.0.77");
        Expect("an address", IPAddress.Parse("192.168.0.77"), printer.StaticIPAddress);
        printer.SetCameraMode(CameraMode.Nominal);
        printer.RestoreDefaults(RestoreScope.All);
        Expect("a number put back", 3, printer.FaxRedials);
    }

    private static Layout PhotoLayout(string word)
    {
        Layout layout;
        Expect("a word of none", false, Words.TryParse("none", out layout));
        Words.TryParse(word, out layout);
        return layout;
    }

    private static void CheckRefusals(Printer printer)
    {
        KestrelException refusal = Refused("200 redials", () => printer.FaxRedials = 200);
        Expect("name", "ERROR_CRC", refusal.Name);
        Expect("response", 3450u, refusal.Response);
        Expect("words", true, refusal.Message.Contains("check the value that was sent against those"));
        ExpectCode("a number without a word", ErrorCode.InvalidParameter, () => printer.FaxMode = (FaxMode)99);
        ExpectCode("a zero character", ErrorCode.BadText, () => printer.FriendlyName = "a\0b");
        ExpectCode("an index too high", ErrorCode.InvalidParameter, () => printer.GetWirelessSecurityKey(4));
        ExpectCode("a long name", ErrorCode.BadText, () => printer.SetOneTouch(0, new QuickDial { Name = new string('x', 40) }));
    }

    private static void CheckRecords(Printer printer)
    {
        printer.SetOneTouch(4, new QuickDial { Type = AddressType.Email, Name = "\u00C4\u00F6", Address = "a@example.com" });
        Expect("a record", "\u00C4\u00F6", printer.OneTouchList[4].Name);
        QuickDial[] list = printer.SpeedDialList;
        list[59] = new QuickDial { Type = AddressType.Fax, Name = new string('n', 39), Address = "0301234567" };
        printer.SpeedDialList = list;
        Expect("the last record", "0301234567", printer.SpeedDialList[59].Address);
        DateTime leapDay = new DateTime(2028, 2, 29, 23, 59, 0);
        printer.Clock = leapDay;
        Expect("the clock", true, printer.Clock - leapDay <= TimeSpan.FromMinutes(1));
        printer.StartSearchForAccessPoints();
        while (printer.AccessPointCount == 0) Thread.Sleep(50);
        Expect("an access point", 17, printer.GetAccessPoints()[0].MacAddress.Length);
        Expect("hosts", true, printer.GetHosts().Count > 0);
        Expect("a reply", "0000,", Encoding.ASCII.GetString(printer.Send(Encoding.ASCII.GetBytes("ZRPing?")), 0, 5));
        printer.Ping(IPAddress.Loopback, 1, 1);
        Status status = printer.GetStatus();
        Expect("the status", true, status.IsKnown && status.Text != "");
    }

    private static void CheckOwner(Printer printer)
    {
        Action read = () => printer.FaxRedials.ToString();
        Thread other = new Thread(() => ExpectCode("another thread", ErrorCode.WrongThread, read));
        other.Start();
        other.Join();
        using (printer.Lock())
            ExpectCode("a selection under a lock", ErrorCode.Locked, () => Printer.Select("Office"));
        using (Printer second = Printer.Select("Office"))
        {
            ExpectCode("a selection that is lost", ErrorCode.SelectionLost, read);
            Expect("the new one", 3, second.FaxRedials);
            ExpectCode("nobody", ErrorCode.InvalidPrinterName, () => Printer.Select("Nobody"));
            ExpectCode("after a failure", ErrorCode.SelectionLost, () => second.FaxRedials.ToString());
        }
    }

    private static int Main(string[] arguments)
    {
        Printer printer = Printer.Select("Office");
        if (arguments[0] == "list")
        {
            List(printer);
            return 0;
        }
        CheckSizes();
        CheckSettings(printer);
        CheckRefusals(printer);
        CheckRecords(printer);
        CheckOwner(printer);
        return faults == 0 ? 0 : 1;
    }
}
