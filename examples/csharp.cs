// Reads and changes a setting of an installed printer, and shows what a refusal looks like.
//   mcs csharp.cs /usr/share/kestrel-sdk/csharp/*.cs && mono csharp.exe Office
using System;
using Kestrel;

static class Example
{
    static int Main(string[] arguments)
    {
        try
        {
            using (Printer printer = Printer.Select(arguments.Length > 0 ? arguments[0] : ""))
            {
                Console.WriteLine("redials: {0}, fax mode: {1}", printer.FaxRedials, Words.Of(printer.FaxMode));
                printer.FaxRedials = 5;
                printer.FaxMode = FaxMode.FineBlack;
                using (printer.Lock()) // other programs are refused meanwhile
                    printer.FaxSendersName = "Smith & Sons";
                Console.WriteLine("redials: {0}, sender: {1}", printer.FaxRedials, printer.FaxSendersName);
                printer.FaxRedials = 200;
            }
            return 0;
        }
        catch (KestrelException failure)
        {
            Console.Error.WriteLine(failure.Message);
            return 1;
        }
    }
}
