// Failures in words.
using System;

namespace Kestrel
{
    /// <summary>Why a call failed: its Message is everything below in one line.</summary>
    public sealed class KestrelException : Exception
    {
        internal KestrelException(uint code, string reply = "", uint response = 0)
            : base(Told.InOneLine(Told.Error(code), reply, response))
        {
            ErrorText error = Told.Error(code);
            Code = code;
            Name = error.Name;
            Text = error.Text;
            Advice = error.Advice;
            Reply = reply;
            Response = response;
        }

        /// <summary>A constant of ErrorCode, or a code of the system that was passed on.</summary>
        public uint Code { get; }

        /// <summary>Such as "ERROR_BUSY"; empty for a code of the system.</summary>
        public string Name { get; }

        /// <summary>What happened.</summary>
        public string Text { get; }

        /// <summary>What to do about it.</summary>
        public string Advice { get; }

        /// <summary>The reply that was judged bad; empty when none was.</summary>
        public string Reply { get; }

        /// <summary>Its response number; 0 when there was no reply.</summary>
        public uint Response { get; }
    }

    internal struct ErrorText
    {
        internal readonly uint Code;
        internal readonly string Name, Text, Advice;

        internal ErrorText(uint code, string name, string text, string advice)
        {
            Code = code;
            Name = name;
            Text = text;
            Advice = advice;
        }
    }

    internal struct ResponseText
    {
        internal readonly uint First, Last;
        internal readonly string Text;

        internal ResponseText(uint first, uint last, string text)
        {
            First = first;
            Last = last;
            Text = text;
        }
    }

    internal static partial class Told
    {
        internal static ErrorText Error(uint code)
        {
            foreach (ErrorText error in Errors)
                if (error.Code == code) return error;
            return new ErrorText(code, "", "an error of the system", "look the code up in the system's documentation");
        }

        internal static string InOneLine(ErrorText error, string reply, uint response)
        {
            const uint ownCodes = 0xE0000000;
            string code = error.Code >= ownCodes ? "0x" + error.Code.ToString("X8") : error.Code.ToString();
            string line = error.Text + " (" + (error.Name == "" ? "" : error.Name + ", ") + code + "); " + error.Advice;
            // The first that has the number counts, and the last has them all.
            if (response != 0)
                line += "; the printer answered " + response + ", "
                    + Array.Find(Responses, each => each.First <= response && response <= each.Last).Text;
            return reply == "" ? line : line + ": \"" + reply + "\"";
        }
    }
}
